#include "suite/store/QVAmostraSuite.h"

#include <cstdio>
#include <string>
#include <vector>

#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVMoeda.h"
#include "platform/QVCodePage.h"
#include "suite/store/CQVBancoSuite.h"
#include "suite/store/QVTabelasSuite.h"

namespace {

struct Municipio {
  const char* sNome;
  const char* sUf;
  const char* sIbge;
};
constexpr Municipio kMunicipios[] = {{"São Paulo", "SP", "3550308"},      {"Campinas", "SP", "3509502"},
                                     {"Belo Horizonte", "MG", "3106200"}, {"Curitiba", "PR", "4106902"},
                                     {"Porto Alegre", "RS", "4314902"},   {"Recife", "PE", "2611606"}};

struct Filial {
  const char* sCodigo;
  const char* sNome;
  const char* sCnpj;
  int iMunicipio;
  bool bAtiva;
};
constexpr Filial kFiliais[] = {{"0001", "Matriz São Paulo", "12.345.678/0001-95", 0, true},
                               {"0002", "Filial Campinas", "12.345.678/0002-76", 1, true},
                               {"0003", "Filial Belo Horizonte", "12.345.678/0003-57", 2, false}};

struct Usuario {
  const char* sLogin;
  const char* sNome;
  const char* sPerfil;
  bool bExecutor;
  bool bAtivo;
  unsigned uFiliais;  // bit i: may work in branch i
};
constexpr Usuario kUsuarios[] = {
    {"admin", "Administrador do Sistema", "Administrador", false, true, 0b111},
    {"carlos.pereira", "Carlos Eduardo Pereira", "Técnico de campo", true, true, 0b001},
    {"mariana.costa", "Mariana Costa Ribeiro", "Analista de suporte", true, true, 0b011},
    {"rafael.souza", "Rafael Souza Lima", "Técnico de campo", true, true, 0b010},
    {"juliana.alves", "Juliana Alves Martins", "Coordenadora de atendimento", false, true, 0b001},
    {"paulo.mendes", "Paulo Henrique Mendes", "Técnico de campo", true, false, 0b100},
};

struct Cliente {
  const char* sNome;
  const char* sFantasia;
  const char* sCnpj;
  const char* sIe;
  const char* sEndereco;
  const char* sBairro;
  const char* sCep;
  int iMunicipio;
  const char* sTelefone;
  const char* sEmail;
  bool bAtivo;
};
constexpr Cliente kClientes[] = {
    {"Padaria Pão Dourado Ltda.", "Pão Dourado", "23.456.789/0001-95", "114.382.976.110", "Rua Augusta, 1520",
     "Consolação", "01304-001", 0, "(11) 3081-2233", "compras@paodourado.com.br", true},
    {"Metalúrgica Campinas S.A.", "MetalCamp", "34.567.812/0001-35", "244.118.520.117", "Rodovia Anhanguera, km 98",
     "Jardim Santa Mônica", "13082-700", 1, "(19) 3227-5500", "manutencao@metalcamp.com.br", true},
    {"Clínica Saúde Integral Ltda.", "Saúde Integral", "45.678.123/0001-14", "", "Avenida Afonso Pena, 2300",
     "Funcionários", "30130-007", 2, "(31) 3274-8100", "ti@saudeintegral.com.br", true},
    {"Escola Aprender Mais Ltda.", "Aprender Mais", "56.781.234/0001-78", "", "Rua XV de Novembro, 700", "Centro",
     "80020-310", 3, "(41) 3322-9090", "secretaria@aprendermais.com.br", true},
    {"Transportes Gaúcho Ltda.", "Gaúcho Cargas", "67.812.345/0001-10", "096/3254871", "Avenida Assis Brasil, 4500",
     "São Sebastião", "91010-004", 4, "(51) 3344-1200", "frota@gauchocargas.com.br", false},
};

struct Unidade {
  const char* sSigla;
  const char* sDescricao;
  int iCasas;
};
constexpr Unidade kUnidades[] = {{"H", "Hora", 2}, {"UN", "Unidade", 0}, {"KM", "Quilômetro", 1}};

struct Servico {
  const char* sDescricao;
  const char* sTipo;
  const char* sClassificacao;
  int iUnidade;  // -1: none (titles)
  QVMoeda vUnitario;
  const char* sIss;
};
constexpr Servico kServicos[] = {
    {"Suporte técnico", "T", "01", -1, 0, ""},
    {"Atendimento remoto", "S", "01.001", 0, 150'0000, "01.07"},
    {"Atendimento presencial", "S", "01.002", 0, 220'0000, "01.07"},
    {"Deslocamento", "S", "01.003", 2, 1'8500, "01.07"},
    {"Implantação", "T", "02", -1, 0, ""},
    {"Instalação de sistema", "S", "02.001", 1, 480'0000, "01.07"},
    {"Treinamento de usuários", "S", "02.002", 0, 180'0000, "08.02"},
    {"Manutenção", "T", "03", -1, 0, ""},
    {"Manutenção preventiva", "S", "03.001", 0, 165'0000, "14.01"},
    {"Troca de peças", "S", "03.002", 1, 95'5000, "14.01"},
};

struct Contrato {
  const char* sCodigo;
  int iCliente;
  std::uint32_t dInicio;
  std::uint32_t dFim;
  QVMoeda vHora;
};

struct Nota {
  std::int64_t iNumero;
  std::uint32_t dEmissao;
  int iCliente;
  int iServico;
  QVMoeda vValor;
  QVMoeda vRecebido;
  bool bCancelada;
};

struct Vinculo {
  std::uint16_t iMA;
  std::int64_t iPosicao;
  std::int64_t iCampo;
  std::int64_t iValor;
  const char* sTexto;
};

void Liga(CQVComandoSuite& cmd, int i, const QVValorSuite& v) {
  if (const auto* p = std::get_if<std::int64_t>(&v))
    cmd.Liga(i, *p);
  else if (const auto* s = std::get_if<std::string>(&v))
    cmd.Liga(i, std::string_view(*s));
  else
    cmd.LigaNulo(i);
}

std::int64_t B(bool b) { return b ? 1 : 0; }

// The loader's statements, inside the caller's transaction.
class CCarga {
 public:
  explicit CCarga(CQVBancoSuite& banco) : m_banco(banco) {}

  // The first column of the first row, or 0 without rows.
  HRESULT Valor(const std::string& sql, std::initializer_list<QVValorSuite> valores, std::int64_t* p) {
    CQVComandoSuite cmd;
    QV_CHECK(m_banco.Prepara(sql.c_str(), &cmd));
    int i = 0;
    for (const QVValorSuite& v : valores) Liga(cmd, ++i, v);
    bool bLinha = false;
    QV_CHECK(cmd.Passo(&bLinha));
    *p = bLinha ? cmd.Inteiro(0) : 0;
    return S_OK;
  }

  HRESULT Executa(const std::string& sql, std::initializer_list<QVValorSuite> valores) {
    CQVComandoSuite cmd;
    QV_CHECK(m_banco.Prepara(sql.c_str(), &cmd));
    int i = 0;
    for (const QVValorSuite& v : valores) Liga(cmd, ++i, v);
    QV_CHECK(cmd.Executa());
    return S_OK;
  }

  // A row with the table's next free pointer, given explicitly so that the
  // rows that point to it know it: *pPonteiro.
  HRESULT Insere(const char* sTabela, const char* sColunas, std::initializer_list<QVValorSuite> valores,
                 std::int64_t* pPonteiro) {
    QV_CHECK(Valor(std::string("SELECT COALESCE(MAX(ponteiro), 0) + 1 FROM ") + sTabela, {}, pPonteiro));
    std::string sParametros = "?1";
    for (std::size_t i = 0; i < valores.size(); ++i) sParametros += ", ?" + std::to_string(i + 2);
    CQVComandoSuite cmd;
    const std::string sql =
        std::string("INSERT INTO ") + sTabela + " (ponteiro, " + sColunas + ") VALUES (" + sParametros + ")";
    QV_CHECK(m_banco.Prepara(sql.c_str(), &cmd));
    cmd.Liga(1, *pPonteiro);
    int i = 1;
    for (const QVValorSuite& v : valores) Liga(cmd, ++i, v);
    QV_CHECK(cmd.Executa());
    return S_OK;
  }

  // The row of a natural key when the store has it, else a new one.
  HRESULT InsereOuUsa(const char* sTabela, const char* sChave, const std::string& sValorChave, const char* sColunas,
                      std::initializer_list<QVValorSuite> valores, std::int64_t* pPonteiro) {
    QV_CHECK(
        Valor(std::string("SELECT ponteiro FROM ") + sTabela + " WHERE " + sChave + " = ?1", {sValorChave}, pPonteiro));
    if (*pPonteiro == 0) QV_CHECK(Insere(sTabela, sColunas, valores, pPonteiro));
    return S_OK;
  }

 private:
  CQVBancoSuite& m_banco;
};

HRESULT Carrega(CCarga& c) {
  std::vector<std::int64_t> municipios, filiais, usuarios, clientes, unidades, servicos;
  std::int64_t p = 0;
  for (const Municipio& m : kMunicipios) {
    QV_CHECK(
        c.InsereOuUsa("municipios", "codigo_ibge", m.sIbge, "nome, uf, codigo_ibge", {m.sNome, m.sUf, m.sIbge}, &p));
    municipios.push_back(p);
  }
  std::int64_t lEmpresa = 0;
  QV_CHECK(c.Insere(
      "empresas",
      "nome, razao_social, nome_fantasia, cnpj, inscricao_estadual, endereco, ponteiro_municipio, "
      "telefone, email",
      {kQVEmpresaAmostra, "Exemplo Serviços Técnicos Ltda.", "Exemplo Técnica", "12.345.678/0001-95", "110.042.490.114",
       "Avenida Paulista, 1000, conjunto 52 - Bela Vista", municipios[0], "(11) 3251-4000", "contato@exemplo.com.br"},
      &lEmpresa));
  for (const Filial& f : kFiliais) {
    QV_CHECK(c.Insere("filiais", "ponteiro_empresa, codigo, nome, cnpj, ponteiro_municipio, ativa",
                      {lEmpresa, f.sCodigo, f.sNome, f.sCnpj, municipios[f.iMunicipio], B(f.bAtiva)}, &p));
    filiais.push_back(p);
  }
  for (const Usuario& u : kUsuarios) {
    const std::string sEmail = std::string(u.sLogin) + "@exemplo.com.br";
    QV_CHECK(c.InsereOuUsa("usuarios", "login", u.sLogin, "login, nome, email, perfil, executor, ativo",
                           {u.sLogin, u.sNome, sEmail, u.sPerfil, B(u.bExecutor), B(u.bAtivo)}, &p));
    usuarios.push_back(p);
    QV_CHECK(
        c.Executa("INSERT INTO usuarios_empresas (ponteiro_usuario, ponteiro_empresa) VALUES (?1, ?2)", {p, lEmpresa}));
    for (std::size_t f = 0; f < filiais.size(); ++f)
      if ((u.uFiliais >> f) & 1)
        QV_CHECK(c.Executa("INSERT INTO filiais_usuarios (ponteiro_usuario, ponteiro_filial) VALUES (?1, ?2)",
                           {p, filiais[f]}));
  }
  int iCodigo = 0;
  for (const Cliente& k : kClientes) {
    char sCodigo[8];
    std::snprintf(sCodigo, sizeof sCodigo, "%04d", ++iCodigo);
    QV_CHECK(c.Insere("clientes",
                      "ponteiro_empresa, codigo, nome, nome_fantasia, cnpj_cpf, inscricao_estadual, endereco, bairro, "
                      "cep, ponteiro_municipio, telefone, email, ativo",
                      {lEmpresa, sCodigo, k.sNome, k.sFantasia, k.sCnpj, k.sIe, k.sEndereco, k.sBairro, k.sCep,
                       municipios[k.iMunicipio], k.sTelefone, k.sEmail, B(k.bAtivo)},
                      &p));
    clientes.push_back(p);
  }
  for (const Unidade& u : kUnidades) {
    QV_CHECK(c.InsereOuUsa("unidades", "sigla", u.sSigla, "sigla, descricao, casas_decimais",
                           {u.sSigla, u.sDescricao, std::int64_t{u.iCasas}}, &p));
    unidades.push_back(p);
  }
  iCodigo = 0;
  for (const Servico& s : kServicos) {
    char sCodigo[8];
    std::snprintf(sCodigo, sizeof sCodigo, "%04d", ++iCodigo);
    const QVValorSuite unidade = s.iUnidade < 0 ? QVValorSuite{} : QVValorSuite{unidades[s.iUnidade]};
    QV_CHECK(c.Insere("servicos",
                      "ponteiro_empresa, codigo, descricao, tipo, classificacao, ponteiro_unidade, valor_unitario, "
                      "codigo_tributacao_iss",
                      {lEmpresa, sCodigo, s.sDescricao, s.sTipo, s.sClassificacao, unidade, s.vUnitario, s.sIss}, &p));
    servicos.push_back(p);
  }
  const Contrato contratos[] = {{"CT-2024/001", 1, QVDia(2024, 1, 1), QVDia(2025, 12, 31), 200'0000},
                                {"CT-2024/002", 2, QVDia(2024, 3, 1), QVDia(2025, 2, 28), 185'0000}};
  for (const Contrato& k : contratos)
    QV_CHECK(c.Insere(
        "contratos", "ponteiro_empresa, codigo, ponteiro_cliente, data_inicio, data_fim, valor_hora",
        {lEmpresa, k.sCodigo, clientes[k.iCliente], std::int64_t{k.dInicio}, std::int64_t{k.dFim}, k.vHora}, &p));
  QV_CHECK(
      c.Executa("INSERT INTO parametros_ge (ponteiro_empresa, permitir_classes_diferentes, relatorios_por_faturamento, "
                "origem_acompanhamento, versao_acompanhamento) VALUES (?1, 0, 1, 2, 1)",
                {lEmpresa}));
  const Nota notas[] = {{1001, QVDia(2024, 3, 5), 1, 2, 1320'0000, 1320'0000, false},
                        {1002, QVDia(2024, 3, 18), 0, 1, 450'0000, 0, false},
                        {1003, QVDia(2024, 4, 2), 2, 8, 990'0000, 0, true},
                        {1004, QVDia(2024, 4, 15), 3, 6, 1440'0000, 720'0000, false}};
  for (const Nota& n : notas)
    QV_CHECK(c.Insere("notas_fiscais",
                      "ponteiro_empresa, numero, serie, data_emissao, ponteiro_cliente, ponteiro_servico, valor, "
                      "valor_recebido, cancelada",
                      {lEmpresa, n.iNumero, "1", std::int64_t{n.dEmissao}, clientes[n.iCliente], servicos[n.iServico],
                       n.vValor, n.vRecebido, B(n.bCancelada)},
                      &p));
  const Vinculo vinculos[] = {{QVMesAno(2024, 3), 1, 1, 0, "Equipamento: torno CNC da linha 2"},
                              {QVMesAno(2024, 3), 1, 2, 2, "Prioridade alta"},
                              {QVMesAno(2024, 3), 2, 1, 0, "Contato no local: José Almeida, ramal 214"},
                              {QVMesAno(2024, 4), 1, 1, 0, "Número de série: 45-7781-B"}};
  for (const Vinculo& v : vinculos)
    QV_CHECK(
        c.Executa("INSERT INTO vinculos (ponteiro_empresa, ma, posicao, campo, valor, texto) VALUES (?1, ?2, ?3, "
                  "?4, ?5, ?6)",
                  {lEmpresa, std::int64_t{v.iMA}, v.iPosicao, v.iCampo, v.iValor, v.sTexto}));
  QV_CHECK(c.Insere("projetos", "ponteiro_empresa, codigo, nome, ponteiro_cliente",
                    {lEmpresa, "PRJ-001", "Implantação do sistema de gestão", clientes[1]}, &p));
  return S_OK;
}

}  // namespace

HRESULT QVCriaAmostraSuite(CQVBancoSuite& banco) {
  bool bExiste = false;
  const auto corpo = [&]() -> HRESULT {
    // Company names are compared as the suite compares them.
    CQVComandoSuite cmd;
    QV_CHECK(banco.Prepara("SELECT nome FROM empresas", &cmd));
    for (bool bLinha = true; bLinha && !bExiste;) {
      QV_CHECK(cmd.Passo(&bLinha));
      bExiste = bLinha && QVIguaisSemCaixa(cmd.Texto(0), kQVEmpresaAmostra);
    }
    if (bExiste) return S_OK;
    CCarga carga(banco);
    QV_CHECK(Carrega(carga));
    return S_OK;
  };
  QV_CHECK(banco.Transacao(corpo));
  return bExiste ? S_FALSE : S_OK;
}
