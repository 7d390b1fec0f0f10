// The system's own status codes.
//
//   0x8108xxxx  E_QVCR_*  record store and call frame (facility 264)
//   0x8004xxxx  E_QVDF_*, ER_QVDF_*  support library and suite message
//               numbers widened with OR 0x80040000 (facility 4)
//   0x8004EA60..0x8004EA67  exceptions caught at a boundary
//   0x8004EAC5..0x8004EADB, 0x8004EE47  structured exceptions
//   0x8004EADC..0x8004EB02  runtime-library errno values
// Names and Portuguese message texts of each: QVStatus.h.
#pragma once

#include <cstdint>

#include "platform/QVHResult.h"

inline constexpr int FACILITY_QVCR = 0x108;

// Record store.
inline constexpr HRESULT E_QVCR_ARQUIVO_TRA_ENCONTRADO = QVHr(0x810809CBu);
inline constexpr HRESULT E_QVCR_INICIALIZACAO_QVDATABASE_SEM_EMPRESA = QVHr(0x810809CFu);
inline constexpr HRESULT E_QVCR_VERSAO_DADOS_SUPERIOR_VERSAO_SISTEMA = QVHr(0x810809C7u);
// Data files of an older version that this server cannot convert.
inline constexpr HRESULT E_QVCR_VERSAO_DADOS_INFERIOR_SEM_CONVERSAO = QVHr(0x810809C8u);
inline constexpr HRESULT E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA = QVHr(0x810809D8u);
inline constexpr HRESULT E_QVCR_TENTATIVA_LER_POSICAO_ZERO = QVHr(0x810809D9u);
inline constexpr HRESULT E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO = QVHr(0x810809DAu);
inline constexpr HRESULT E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO = QVHr(0x810809DBu);
inline constexpr HRESULT E_QVCR_ARQUIVO_NAO_EXISTE = QVHr(0x810809E3u);
inline constexpr HRESULT E_QVCR_ARQUIVO_SINGLE_REG_NAO_TEM_TAMANHO_ESTRUTURA = QVHr(0x810809E7u);
inline constexpr HRESULT E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO = QVHr(0x810809F1u);
inline constexpr HRESULT E_QVCR_SERVIDOR_NAO_INICIALIZADO = QVHr(0x81080A04u);
inline constexpr HRESULT E_QVCR_VERSAO_CABECALHO_SUPERIOR_VERSAO_SISTEMA = QVHr(0x81080A3Eu);
inline constexpr HRESULT E_QVCR_CRC_CABECALHO_NAO_CONFERE = QVHr(0x81080A3Fu);
inline constexpr HRESULT E_QVCR_NOME_ARQUIVO_NAO_CONFERE = QVHr(0x81080A43u);
inline constexpr HRESULT E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS = QVHr(0x81080A50u);
inline constexpr HRESULT E_QVCR_OBJETO_SERVIDOR_INEXISTENTE = QVHr(0x81080AA8u);
inline constexpr HRESULT E_QVCR_COLUNA_INDEXACAO_INVALIDA = QVHr(0x81080AA9u);
inline constexpr HRESULT E_QVCR_INDEXACAO_COM_POSICAO_ZERO = QVHr(0x81080AACu);
inline constexpr HRESULT E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA = QVHr(0x81080AADu);
inline constexpr HRESULT E_QVCR_VERSAO_INCOMPATIVEL = QVHr(0x81080BFDu);
inline constexpr HRESULT E_QVCR_TAMANHO_CABECALHO_NAO_CONFERE = QVHr(0x81080C07u);
inline constexpr HRESULT E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE = QVHr(0x81080C08u);
inline constexpr HRESULT E_QVCR_VERSAO_SISTEMA_INFERIOR_VERSAO_CRIACAO_CABECALHO = QVHr(0x81080C09u);
inline constexpr HRESULT E_QVCR_VERSAO_SISTEMA_INFERIOR_VERSAO_MODIFICACAO_ARQUIVO = QVHr(0x81080C0Au);
inline constexpr HRESULT E_QVCR_CRC_INICIALIZACAO_INVALIDO = QVHr(0x81080C17u);
inline constexpr HRESULT E_QVCR_ESTRUTURA_INICIALIZACAO_INVALIDA = QVHr(0x81080C19u);
inline constexpr HRESULT E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA = QVHr(0x81080C5Eu);

// Support library and suite message numbers (n OR 0x80040000).
inline constexpr HRESULT QVHrDeMensagem(std::uint32_t n) { return QVHr(n | 0x80040000u); }
inline constexpr HRESULT E_QVDF_EMPRESA_SEM_DIRETORIO_DADOS = QVHr(0x80040931u);  // message 2353
// A company name that cannot name the company's folder or fill the
// initialisation record's field unchanged (suite/hostlink/QVSessaoSuite.h).
inline constexpr HRESULT E_QVDF_NOME_EMPRESA_INVALIDO = QVHr(0x80040932u);
// The suite's own store and sessions (suite/): a company or user it does
// not know, a record absent from its master data, a store file it cannot
// use, an import file with a bad row.
inline constexpr HRESULT E_QVDF_EMPRESA_NAO_CADASTRADA = QVHr(0x80040933u);
inline constexpr HRESULT E_QVDF_USUARIO_NAO_CADASTRADO = QVHr(0x80040934u);
inline constexpr HRESULT E_QVDF_USUARIO_SEM_ACESSO_EMPRESA = QVHr(0x80040935u);
inline constexpr HRESULT E_QVDF_REGISTRO_SUITE_INEXISTENTE = QVHr(0x80040936u);
inline constexpr HRESULT E_QVDF_BANCO_SUITE_INVALIDO = QVHr(0x80040937u);
inline constexpr HRESULT E_QVDF_BANCO_SUITE_VERSAO_MAIS_NOVA = QVHr(0x80040938u);
inline constexpr HRESULT E_QVDF_BANCO_SUITE_OCUPADO = QVHr(0x80040939u);
inline constexpr HRESULT E_QVDF_BANCO_SUITE_FALHA = QVHr(0x8004093Au);
inline constexpr HRESULT E_QVDF_IMPORTACAO_LINHA_INVALIDA = QVHr(0x8004093Bu);
inline constexpr HRESULT E_QVDF_SEM_SESSAO_SUITE = QVHr(0x8004093Cu);
inline constexpr HRESULT E_QVDF_FALHA_ACESSAR_REGISTRY = QVHr(0x80043F59u);  // message 16217
inline constexpr HRESULT ER_QVDF_CO_CREATE_INSTANCE_INTERFACE_NULA = QVHr(0x80043F5Au);  // message 16218
inline constexpr HRESULT E_QVDF_MARCA_ACESSO_NEGADO = QVHr(0x80043ED0u);  // message 16080
inline constexpr HRESULT E_QVDF_MARCA_TIPO1_OCUPADA = QVHr(0x80043F61u);  // message 16225
inline constexpr HRESULT E_QVDF_MARCA_TIPO2_OCUPADA = QVHr(0x80043F69u);  // message 16233
inline constexpr HRESULT E_QVDF_MARCA_TIPO3_OCUPADA = QVHr(0x80043F71u);  // message 16241
inline constexpr HRESULT E_QVDF_MARCA_TIPO4_OCUPADA = QVHr(0x80043F7Au);  // message 16250
inline constexpr HRESULT E_QVDF_MARCA_TIPO5_OCUPADA = QVHr(0x80043F8Cu);  // message 16268
inline constexpr HRESULT E_QVDF_MARCA_TIPO6_OCUPADA = QVHr(0x80043F94u);  // message 16276
inline constexpr HRESULT E_QVDF_MARCA_ATENDIMENTO_OCUPADA = QVHr(0x80043F9Cu);  // message 16284
inline constexpr HRESULT E_QVDF_MARCA_INDISPONIVEL = QVHr(0x800443F4u);  // message 17396
// Report of calls by period with the invoice option and an open billing range.
inline constexpr HRESULT E_GE_RELATORIO_PERIODO_FATURAMENTO_INCOMPLETO = QVHr(0x80F90775u);

// Exceptions caught at a boundary.
inline constexpr HRESULT E_QVDF_EXCECAO_PADRAO = QVHr(0x8004EA60u);
inline constexpr HRESULT E_QVDF_EXCECAO_CQVEXCEPTION = QVHr(0x8004EA61u);
inline constexpr HRESULT E_QVDF_EXCECAO_CMEMORYEXCEPTION = QVHr(0x8004EA62u);
inline constexpr HRESULT E_QVDF_EXCECAO_CEXCEPTION = QVHr(0x8004EA63u);
inline constexpr HRESULT E_QVDF_EXCECAO_BAD_ALLOC = QVHr(0x8004EA64u);
inline constexpr HRESULT E_QVDF_EXCECAO_STD_EXCEPTION = QVHr(0x8004EA65u);
inline constexpr HRESULT E_QVDF_EXCECAO_DESCONHECIDA = QVHr(0x8004EA66u);
inline constexpr HRESULT E_QVDF_EXCECAO_CINVALIDARGEXCEPTION = QVHr(0x8004EA67u);

// Structured exceptions: 0x8004EAC5..0x8004EADB by system code, 0x8004EE47
// for any other.
inline constexpr HRESULT E_QVDF_SEH_PRIMEIRO = QVHr(0x8004EAC5u);
inline constexpr HRESULT E_QVDF_SEH_ACCESS_VIOLATION = QVHr(0x8004EAC5u);
inline constexpr HRESULT E_QVDF_SEH_STACK_OVERFLOW = QVHr(0x8004EADAu);
inline constexpr HRESULT E_QVDF_SEH_ULTIMO = QVHr(0x8004EADBu);
inline constexpr HRESULT E_QVDF_SEH_OUTRO = QVHr(0x8004EE47u);

// Runtime-library errno values: 0x8004EADC..0x8004EB02.
inline constexpr HRESULT E_QVDF_ERRNO_PRIMEIRO = QVHr(0x8004EADCu);
inline constexpr HRESULT E_QVDF_ERRNO_ULTIMO = QVHr(0x8004EB02u);

// A status that came from a structured exception: the call frame discards
// its server object after one.
constexpr bool QVEhCodigoSEH(HRESULT hr) {
  return hr >= E_QVDF_SEH_PRIMEIRO && (hr < E_QVDF_ERRNO_PRIMEIRO || hr == E_QVDF_SEH_OUTRO);
}
