// The suite store's schema, as numbered migrations. A migration is never
// edited once shipped: a change is a new migration at the end.
//
// Conventions of every table:
//  - "ponteiro" INTEGER PRIMARY KEY: the 32-bit pointer that records carry
//    (the row id; 0 is never used, so it keeps meaning "none");
//  - per-company tables have "ponteiro_empresa"; a pointer of another
//    company reads as absent;
//  - currency: INTEGER, four implied decimals (1,5 is 15000);
//  - dates: INTEGER day numbers, months INTEGER month codes, hours and
//    minutes INTEGER packed as the records pack them; 0 is "none";
//  - flags: INTEGER 0 or 1.
#include "suite/store/CQVBancoSuite.h"

namespace {

// 1: companies, users and master data: what sessions and searches read.
constexpr const char* kMigracao1 = R"sql(
CREATE TABLE municipios (
  ponteiro INTEGER PRIMARY KEY,
  nome TEXT NOT NULL,
  uf TEXT NOT NULL DEFAULT '',
  codigo_ibge TEXT NOT NULL DEFAULT ''
);
CREATE TABLE empresas (
  ponteiro INTEGER PRIMARY KEY,
  nome TEXT NOT NULL UNIQUE COLLATE NOCASE,
  razao_social TEXT NOT NULL DEFAULT '',
  nome_fantasia TEXT NOT NULL DEFAULT '',
  cnpj TEXT NOT NULL DEFAULT '',
  inscricao_estadual TEXT NOT NULL DEFAULT '',
  endereco TEXT NOT NULL DEFAULT '',
  ponteiro_municipio INTEGER REFERENCES municipios(ponteiro),
  telefone TEXT NOT NULL DEFAULT '',
  email TEXT NOT NULL DEFAULT '',
  pasta TEXT NOT NULL DEFAULT ''
);
CREATE TABLE usuarios (
  ponteiro INTEGER PRIMARY KEY,
  login TEXT NOT NULL UNIQUE COLLATE NOCASE,
  nome TEXT NOT NULL DEFAULT '',
  email TEXT NOT NULL DEFAULT '',
  perfil TEXT NOT NULL DEFAULT '',
  executor INTEGER NOT NULL DEFAULT 0 CHECK (executor IN (0, 1)),
  ativo INTEGER NOT NULL DEFAULT 1 CHECK (ativo IN (0, 1))
);
CREATE TABLE usuarios_empresas (
  ponteiro_usuario INTEGER NOT NULL REFERENCES usuarios(ponteiro) ON DELETE CASCADE,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  PRIMARY KEY (ponteiro_usuario, ponteiro_empresa)
) WITHOUT ROWID;
CREATE TABLE filiais (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  codigo TEXT NOT NULL DEFAULT '',
  nome TEXT NOT NULL,
  cnpj TEXT NOT NULL DEFAULT '',
  ponteiro_municipio INTEGER REFERENCES municipios(ponteiro),
  ativa INTEGER NOT NULL DEFAULT 1 CHECK (ativa IN (0, 1))
);
CREATE INDEX filiais_empresa ON filiais(ponteiro_empresa);
CREATE TABLE filiais_usuarios (
  ponteiro_usuario INTEGER NOT NULL REFERENCES usuarios(ponteiro) ON DELETE CASCADE,
  ponteiro_filial INTEGER NOT NULL REFERENCES filiais(ponteiro) ON DELETE CASCADE,
  PRIMARY KEY (ponteiro_usuario, ponteiro_filial)
) WITHOUT ROWID;
CREATE TABLE clientes (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  codigo TEXT NOT NULL DEFAULT '',
  nome TEXT NOT NULL,
  nome_fantasia TEXT NOT NULL DEFAULT '',
  cnpj_cpf TEXT NOT NULL DEFAULT '',
  inscricao_estadual TEXT NOT NULL DEFAULT '',
  endereco TEXT NOT NULL DEFAULT '',
  bairro TEXT NOT NULL DEFAULT '',
  cep TEXT NOT NULL DEFAULT '',
  ponteiro_municipio INTEGER REFERENCES municipios(ponteiro),
  telefone TEXT NOT NULL DEFAULT '',
  email TEXT NOT NULL DEFAULT '',
  ativo INTEGER NOT NULL DEFAULT 1 CHECK (ativo IN (0, 1))
);
CREATE INDEX clientes_empresa ON clientes(ponteiro_empresa);
CREATE TABLE unidades (
  ponteiro INTEGER PRIMARY KEY,
  sigla TEXT NOT NULL UNIQUE COLLATE NOCASE,
  descricao TEXT NOT NULL DEFAULT '',
  casas_decimais INTEGER NOT NULL DEFAULT 2 CHECK (casas_decimais BETWEEN 0 AND 4)
);
CREATE TABLE servicos (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  codigo TEXT NOT NULL DEFAULT '',
  descricao TEXT NOT NULL,
  tipo TEXT NOT NULL DEFAULT 'S' CHECK (tipo IN ('S', 'T')),
  classificacao TEXT NOT NULL DEFAULT '',
  ponteiro_unidade INTEGER REFERENCES unidades(ponteiro),
  valor_unitario INTEGER NOT NULL DEFAULT 0,
  codigo_tributacao_iss TEXT NOT NULL DEFAULT '',
  ativo INTEGER NOT NULL DEFAULT 1 CHECK (ativo IN (0, 1))
);
CREATE INDEX servicos_empresa_classificacao ON servicos(ponteiro_empresa, classificacao);
CREATE TABLE contratos (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  codigo TEXT NOT NULL,
  ponteiro_cliente INTEGER NOT NULL REFERENCES clientes(ponteiro),
  data_inicio INTEGER NOT NULL DEFAULT 0,
  data_fim INTEGER NOT NULL DEFAULT 0,
  valor_hora INTEGER NOT NULL DEFAULT 0,
  ativo INTEGER NOT NULL DEFAULT 1 CHECK (ativo IN (0, 1))
);
)sql";

// 2: what the server writes and the module's settings: follow-ups and
// their integration with service calls, calendar events, the transaction
// log, linked information, invoices, projects of the suite.
constexpr const char* kMigracao2 = R"sql(
CREATE TABLE parametros_ge (
  ponteiro_empresa INTEGER PRIMARY KEY REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  permitir_classes_diferentes INTEGER NOT NULL DEFAULT 0 CHECK (permitir_classes_diferentes IN (0, 1)),
  relatorios_por_faturamento INTEGER NOT NULL DEFAULT 0 CHECK (relatorios_por_faturamento IN (0, 1)),
  origem_acompanhamento INTEGER NOT NULL DEFAULT 2,
  versao_acompanhamento INTEGER NOT NULL DEFAULT 1
);
CREATE TABLE acompanhamentos (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  ma INTEGER NOT NULL,
  ponteiro_cliente INTEGER NOT NULL DEFAULT 0,
  ponteiro_filial INTEGER NOT NULL DEFAULT 0,
  data_abertura INTEGER NOT NULL DEFAULT 0,
  data_conclusao INTEGER NOT NULL DEFAULT 0,
  situacao INTEGER NOT NULL DEFAULT 0,
  origem INTEGER NOT NULL DEFAULT 0,
  numero_nf INTEGER NOT NULL DEFAULT 0,
  versao_registro INTEGER NOT NULL DEFAULT 0,
  valor_servicos INTEGER NOT NULL DEFAULT 0,
  observacao TEXT NOT NULL DEFAULT ''
);
CREATE INDEX acompanhamentos_empresa ON acompanhamentos(ponteiro_empresa, ma);
CREATE TABLE acompanhamento_servicos (
  ponteiro_acompanhamento INTEGER NOT NULL REFERENCES acompanhamentos(ponteiro) ON DELETE CASCADE,
  identificador INTEGER NOT NULL,
  ponteiro_servico INTEGER NOT NULL DEFAULT 0,
  ponteiro_classe INTEGER NOT NULL DEFAULT 0,
  classe INTEGER NOT NULL DEFAULT 0 CHECK (classe IN (0, 1)),
  ponteiro_executor INTEGER NOT NULL DEFAULT 0,
  situacao INTEGER NOT NULL DEFAULT 0,
  data_prevista INTEGER NOT NULL DEFAULT 0,
  data_conclusao INTEGER NOT NULL DEFAULT 0,
  quantidade INTEGER NOT NULL DEFAULT 0,
  valor INTEGER NOT NULL DEFAULT 0,
  dmc_atendimento INTEGER NOT NULL DEFAULT 0,
  ponteiro_servico_atendimento INTEGER NOT NULL DEFAULT 0,
  descricao TEXT NOT NULL DEFAULT '',
  PRIMARY KEY (ponteiro_acompanhamento, identificador)
) WITHOUT ROWID;
CREATE TABLE integracoes_acompanhamento (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  ma INTEGER NOT NULL,
  ponteiro_acompanhamento INTEGER NOT NULL REFERENCES acompanhamentos(ponteiro) ON DELETE CASCADE,
  dmc_atendimento INTEGER NOT NULL
);
CREATE INDEX integracoes_atendimento ON integracoes_acompanhamento(ponteiro_empresa, dmc_atendimento);
CREATE TABLE listas_eventos (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE
);
CREATE TABLE eventos (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_lista INTEGER NOT NULL REFERENCES listas_eventos(ponteiro) ON DELETE CASCADE,
  ordem INTEGER NOT NULL,
  usuario INTEGER NOT NULL DEFAULT 0,
  id_agenda TEXT NOT NULL DEFAULT '',
  id_evento TEXT NOT NULL DEFAULT '',
  UNIQUE (ponteiro_lista, ordem)
);
CREATE TABLE log_transacoes (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  usuario INTEGER NOT NULL,
  sessao INTEGER NOT NULL,
  data_hora INTEGER NOT NULL,
  modulo INTEGER NOT NULL,
  tipo INTEGER NOT NULL,
  operacao TEXT NOT NULL,
  chave INTEGER NOT NULL DEFAULT 0,
  texto TEXT NOT NULL DEFAULT ''
);
CREATE INDEX log_transacoes_empresa ON log_transacoes(ponteiro_empresa, data_hora);
CREATE TABLE vinculos (
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  ma INTEGER NOT NULL,
  posicao INTEGER NOT NULL,
  campo INTEGER NOT NULL,
  valor INTEGER NOT NULL DEFAULT 0,
  texto TEXT NOT NULL DEFAULT '',
  PRIMARY KEY (ponteiro_empresa, ma, posicao, campo)
) WITHOUT ROWID;
CREATE TABLE notas_fiscais (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  numero INTEGER NOT NULL,
  serie TEXT NOT NULL DEFAULT '',
  data_emissao INTEGER NOT NULL,
  ponteiro_cliente INTEGER NOT NULL REFERENCES clientes(ponteiro),
  ponteiro_servico INTEGER NOT NULL DEFAULT 0,
  ma_atendimento INTEGER NOT NULL DEFAULT 0,
  posicao_atendimento INTEGER NOT NULL DEFAULT 0,
  valor INTEGER NOT NULL DEFAULT 0,
  valor_recebido INTEGER NOT NULL DEFAULT 0,
  cancelada INTEGER NOT NULL DEFAULT 0 CHECK (cancelada IN (0, 1)),
  UNIQUE (ponteiro_empresa, serie, numero)
);
CREATE INDEX notas_fiscais_emissao ON notas_fiscais(ponteiro_empresa, data_emissao);
CREATE INDEX notas_fiscais_atendimento ON notas_fiscais(ponteiro_empresa, ma_atendimento, posicao_atendimento);
CREATE TABLE projetos (
  ponteiro INTEGER PRIMARY KEY,
  ponteiro_empresa INTEGER NOT NULL REFERENCES empresas(ponteiro) ON DELETE CASCADE,
  codigo TEXT NOT NULL DEFAULT '',
  nome TEXT NOT NULL DEFAULT '',
  ponteiro_cliente INTEGER NOT NULL DEFAULT 0,
  inativo INTEGER NOT NULL DEFAULT 0 CHECK (inativo IN (0, 1))
);
)sql";

constexpr QVMigracaoSuite kMigracoes[] = {{1, kMigracao1}, {2, kMigracao2}};
static_assert(std::size(kMigracoes) == kQVVersaoEsquemaSuite);

}  // namespace

const QVMigracaoSuite* QVMigracoesSuite(int* pQuantidade) {
  if (pQuantidade != nullptr) *pQuantidade = static_cast<int>(std::size(kMigracoes));
  return kMigracoes;
}
