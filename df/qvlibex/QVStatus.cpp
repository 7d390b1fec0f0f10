#include "df/qvlibex/QVStatus.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "df/qvlibex/QVCodigos.h"
#include "platform/QVStatusNames.h"

namespace {

// Sorted by value as unsigned numbers, for the lookup's binary search
// (checked at compile time by Ordenada below).
constexpr QVCodigoSistema kCodigos[] = {
    {QVHr(0x80040931u), "E_QVDF_EMPRESA_SEM_DIRETORIO_DADOS",
     "A empresa não possui diretório de dados para o módulo"},
    {QVHr(0x80040932u), "E_QVDF_NOME_EMPRESA_INVALIDO",
     "Nome de empresa inválido: caractere fora da página de código, mais de 47 bytes, ou impossível como nome de pasta"},
    {QVHr(0x80040933u), "E_QVDF_EMPRESA_NAO_CADASTRADA", "Empresa não cadastrada na suíte"},
    {QVHr(0x80040934u), "E_QVDF_USUARIO_NAO_CADASTRADO", "Usuário não cadastrado na suíte ou inativo"},
    {QVHr(0x80040935u), "E_QVDF_USUARIO_SEM_ACESSO_EMPRESA", "O usuário não tem permissão de acesso a esta empresa"},
    {QVHr(0x80040936u), "E_QVDF_REGISTRO_SUITE_INEXISTENTE", "Registro não encontrado nos cadastros da suíte"},
    {QVHr(0x80040937u), "E_QVDF_BANCO_SUITE_INVALIDO",
     "O arquivo de cadastros da suíte não é um banco de dados válido"},
    {QVHr(0x80040938u), "E_QVDF_BANCO_SUITE_VERSAO_MAIS_NOVA",
     "Os cadastros da suíte são de uma versão mais nova que este programa"},
    {QVHr(0x80040939u), "E_QVDF_BANCO_SUITE_OCUPADO",
     "Os cadastros da suíte estão bloqueados por outro processo; tempo de espera esgotado"},
    {QVHr(0x8004093Au), "E_QVDF_BANCO_SUITE_FALHA", "Falha no banco de dados dos cadastros da suíte"},
    {QVHr(0x8004093Bu), "E_QVDF_IMPORTACAO_LINHA_INVALIDA",
     "Linha inválida no arquivo de importação; nada foi importado"},
    {QVHr(0x8004093Cu), "E_QVDF_SEM_SESSAO_SUITE", "O objeto não tem sessão com a suíte (não foi inicializado)"},
    {QVHr(0x80043ED0u), "E_QVDF_MARCA_ACESSO_NEGADO",
     "Acesso negado ao arquivo de marca da base de dados; tempo de espera esgotado"},
    {QVHr(0x80043F59u), "E_QVDF_FALHA_ACESSAR_REGISTRY",
     "Falha ao acessar a configuração da máquina (diretório de dados não encontrado)"},
    {QVHr(0x80043F5Au), "ER_QVDF_CO_CREATE_INSTANCE_INTERFACE_NULA",
     "O objeto foi criado, mas a interface pedida voltou nula"},
    {QVHr(0x80043F61u), "E_QVDF_MARCA_TIPO1_OCUPADA",
     "A base de dados está marcada por outro processo (marca tipo 1); tente mais tarde"},
    {QVHr(0x80043F69u), "E_QVDF_MARCA_TIPO2_OCUPADA",
     "A base de dados está marcada por outro processo (marca tipo 2); tente mais tarde"},
    {QVHr(0x80043F71u), "E_QVDF_MARCA_TIPO3_OCUPADA",
     "A base de dados está marcada por outro processo (marca tipo 3); tente mais tarde"},
    {QVHr(0x80043F7Au), "E_QVDF_MARCA_TIPO4_OCUPADA",
     "A base de dados está marcada por outro processo (marca tipo 4); tente mais tarde"},
    {QVHr(0x80043F8Cu), "E_QVDF_MARCA_TIPO5_OCUPADA",
     "A base de dados está marcada por outro processo (marca tipo 5); tente mais tarde"},
    {QVHr(0x80043F94u), "E_QVDF_MARCA_TIPO6_OCUPADA",
     "A base de dados está marcada por outro processo (marca tipo 6); tente mais tarde"},
    {QVHr(0x80043F9Cu), "E_QVDF_MARCA_ATENDIMENTO_OCUPADA",
     "Os atendimentos da empresa estão em uso exclusivo por outro processo (conversão ou gravação); tente mais tarde"},
    {QVHr(0x800443F4u), "E_QVDF_MARCA_INDISPONIVEL",
     "Não foi possível marcar a base de dados: a marca já está feita ou o tipo de marca é desconhecido"},
    {QVHr(0x8004EA60u), "E_QVDF_EXCECAO_PADRAO", "Exceção não identificada durante a operação"},
    {QVHr(0x8004EA61u), "E_QVDF_EXCECAO_CQVEXCEPTION", "Exceção do sistema (CQVException) sem erro do sistema operacional"},
    {QVHr(0x8004EA62u), "E_QVDF_EXCECAO_CMEMORYEXCEPTION", "Memória insuficiente (CMemoryException)"},
    {QVHr(0x8004EA63u), "E_QVDF_EXCECAO_CEXCEPTION", "Exceção da biblioteca de classes (CException)"},
    {QVHr(0x8004EA64u), "E_QVDF_EXCECAO_BAD_ALLOC", "Memória insuficiente (std::bad_alloc)"},
    {QVHr(0x8004EA65u), "E_QVDF_EXCECAO_STD_EXCEPTION", "Exceção da biblioteca padrão (std::exception)"},
    {QVHr(0x8004EA66u), "E_QVDF_EXCECAO_DESCONHECIDA", "Exceção de tipo desconhecido"},
    {QVHr(0x8004EA67u), "E_QVDF_EXCECAO_CINVALIDARGEXCEPTION", "Argumento inválido (CInvalidArgException)"},
    {QVHr(0x8004EAC5u), "E_QVDF_SEH_ACCESS_VIOLATION", "Exceção estruturada: acesso inválido à memória"},
    {QVHr(0x8004EAC6u), "E_QVDF_SEH_ARRAY_BOUNDS_EXCEEDED", "Exceção estruturada: índice fora dos limites do vetor"},
    {QVHr(0x8004EAC7u), "E_QVDF_SEH_BREAKPOINT", "Exceção estruturada: ponto de parada"},
    {QVHr(0x8004EAC8u), "E_QVDF_SEH_DATATYPE_MISALIGNMENT", "Exceção estruturada: dado desalinhado"},
    {QVHr(0x8004EAC9u), "E_QVDF_SEH_FLT_DENORMAL_OPERAND", "Exceção estruturada: operando de ponto flutuante desnormalizado"},
    {QVHr(0x8004EACAu), "E_QVDF_SEH_FLT_DIVIDE_BY_ZERO", "Exceção estruturada: divisão de ponto flutuante por zero"},
    {QVHr(0x8004EACBu), "E_QVDF_SEH_FLT_INEXACT_RESULT", "Exceção estruturada: resultado de ponto flutuante inexato"},
    {QVHr(0x8004EACCu), "E_QVDF_SEH_FLT_INVALID_OPERATION", "Exceção estruturada: operação de ponto flutuante inválida"},
    {QVHr(0x8004EACDu), "E_QVDF_SEH_FLT_OVERFLOW", "Exceção estruturada: estouro de ponto flutuante"},
    {QVHr(0x8004EACEu), "E_QVDF_SEH_FLT_STACK_CHECK", "Exceção estruturada: pilha de ponto flutuante"},
    {QVHr(0x8004EACFu), "E_QVDF_SEH_FLT_UNDERFLOW", "Exceção estruturada: subfluxo de ponto flutuante"},
    {QVHr(0x8004EAD0u), "E_QVDF_SEH_GUARD_PAGE", "Exceção estruturada: página de guarda"},
    {QVHr(0x8004EAD1u), "E_QVDF_SEH_ILLEGAL_INSTRUCTION", "Exceção estruturada: instrução ilegal"},
    {QVHr(0x8004EAD2u), "E_QVDF_SEH_IN_PAGE_ERROR", "Exceção estruturada: erro de leitura de página"},
    {QVHr(0x8004EAD3u), "E_QVDF_SEH_INT_DIVIDE_BY_ZERO", "Exceção estruturada: divisão inteira por zero"},
    {QVHr(0x8004EAD4u), "E_QVDF_SEH_INT_OVERFLOW", "Exceção estruturada: estouro de inteiro"},
    {QVHr(0x8004EAD5u), "E_QVDF_SEH_INVALID_DISPOSITION", "Exceção estruturada: disposição inválida"},
    {QVHr(0x8004EAD6u), "E_QVDF_SEH_INVALID_HANDLE", "Exceção estruturada: identificador inválido"},
    {QVHr(0x8004EAD7u), "E_QVDF_SEH_NONCONTINUABLE_EXCEPTION", "Exceção estruturada: exceção não continuável"},
    {QVHr(0x8004EAD8u), "E_QVDF_SEH_PRIV_INSTRUCTION", "Exceção estruturada: instrução privilegiada"},
    {QVHr(0x8004EAD9u), "E_QVDF_SEH_SINGLE_STEP", "Exceção estruturada: passo a passo"},
    {QVHr(0x8004EADAu), "E_QVDF_SEH_STACK_OVERFLOW", "Exceção estruturada: estouro de pilha"},
    {QVHr(0x8004EADBu), "E_QVDF_SEH_UNWIND_CONSOLIDATE", "Exceção estruturada: consolidação de desempilhamento"},
    {QVHr(0x8004EADCu), "E_QVDF_ERRNO_EPERM", "Erro da biblioteca de execução: operação não permitida"},
    {QVHr(0x8004EADDu), "E_QVDF_ERRNO_ENOENT", "Erro da biblioteca de execução: arquivo ou diretório inexistente"},
    {QVHr(0x8004EADEu), "E_QVDF_ERRNO_ESRCH", "Erro da biblioteca de execução: processo inexistente"},
    {QVHr(0x8004EADFu), "E_QVDF_ERRNO_EINTR", "Erro da biblioteca de execução: chamada interrompida"},
    {QVHr(0x8004EAE0u), "E_QVDF_ERRNO_EIO", "Erro da biblioteca de execução: erro de entrada e saída"},
    {QVHr(0x8004EAE1u), "E_QVDF_ERRNO_ENXIO", "Erro da biblioteca de execução: dispositivo ou endereço inexistente"},
    {QVHr(0x8004EAE2u), "E_QVDF_ERRNO_E2BIG", "Erro da biblioteca de execução: lista de argumentos longa demais"},
    {QVHr(0x8004EAE3u), "E_QVDF_ERRNO_ENOEXEC", "Erro da biblioteca de execução: formato de executável inválido"},
    {QVHr(0x8004EAE4u), "E_QVDF_ERRNO_EBADF", "Erro da biblioteca de execução: descritor de arquivo inválido"},
    {QVHr(0x8004EAE5u), "E_QVDF_ERRNO_ECHILD", "Erro da biblioteca de execução: nenhum processo filho"},
    {QVHr(0x8004EAE6u), "E_QVDF_ERRNO_EAGAIN", "Erro da biblioteca de execução: recurso temporariamente indisponível"},
    {QVHr(0x8004EAE7u), "E_QVDF_ERRNO_ENOMEM", "Erro da biblioteca de execução: memória insuficiente"},
    {QVHr(0x8004EAE8u), "E_QVDF_ERRNO_EACCES", "Erro da biblioteca de execução: permissão negada"},
    {QVHr(0x8004EAE9u), "E_QVDF_ERRNO_EFAULT", "Erro da biblioteca de execução: endereço inválido"},
    {QVHr(0x8004EAEAu), "E_QVDF_ERRNO_EBUSY", "Erro da biblioteca de execução: dispositivo ou recurso ocupado"},
    {QVHr(0x8004EAEBu), "E_QVDF_ERRNO_EEXIST", "Erro da biblioteca de execução: o arquivo já existe"},
    {QVHr(0x8004EAECu), "E_QVDF_ERRNO_EXDEV", "Erro da biblioteca de execução: vínculo entre dispositivos"},
    {QVHr(0x8004EAEDu), "E_QVDF_ERRNO_ENODEV", "Erro da biblioteca de execução: dispositivo inexistente"},
    {QVHr(0x8004EAEEu), "E_QVDF_ERRNO_ENOTDIR", "Erro da biblioteca de execução: não é um diretório"},
    {QVHr(0x8004EAEFu), "E_QVDF_ERRNO_EISDIR", "Erro da biblioteca de execução: é um diretório"},
    {QVHr(0x8004EAF0u), "E_QVDF_ERRNO_EINVAL", "Erro da biblioteca de execução: argumento inválido"},
    {QVHr(0x8004EAF1u), "E_QVDF_ERRNO_ENFILE", "Erro da biblioteca de execução: arquivos abertos demais no sistema"},
    {QVHr(0x8004EAF2u), "E_QVDF_ERRNO_EMFILE", "Erro da biblioteca de execução: arquivos abertos demais"},
    {QVHr(0x8004EAF3u), "E_QVDF_ERRNO_ENOTTY", "Erro da biblioteca de execução: operação de controle inadequada"},
    {QVHr(0x8004EAF4u), "E_QVDF_ERRNO_EFBIG", "Erro da biblioteca de execução: arquivo grande demais"},
    {QVHr(0x8004EAF5u), "E_QVDF_ERRNO_ENOSPC", "Erro da biblioteca de execução: sem espaço no dispositivo"},
    {QVHr(0x8004EAF6u), "E_QVDF_ERRNO_ESPIPE", "Erro da biblioteca de execução: posicionamento inválido"},
    {QVHr(0x8004EAF7u), "E_QVDF_ERRNO_EROFS", "Erro da biblioteca de execução: sistema de arquivos somente leitura"},
    {QVHr(0x8004EAF8u), "E_QVDF_ERRNO_EMLINK", "Erro da biblioteca de execução: vínculos demais"},
    {QVHr(0x8004EAF9u), "E_QVDF_ERRNO_EPIPE", "Erro da biblioteca de execução: canal interrompido"},
    {QVHr(0x8004EAFAu), "E_QVDF_ERRNO_EDOM", "Erro da biblioteca de execução: argumento fora do domínio"},
    {QVHr(0x8004EAFBu), "E_QVDF_ERRNO_ERANGE", "Erro da biblioteca de execução: resultado fora do intervalo"},
    {QVHr(0x8004EAFCu), "E_QVDF_ERRNO_EDEADLK", "Erro da biblioteca de execução: impasse de recurso evitado"},
    {QVHr(0x8004EAFDu), "E_QVDF_ERRNO_ENAMETOOLONG", "Erro da biblioteca de execução: nome de arquivo longo demais"},
    {QVHr(0x8004EAFEu), "E_QVDF_ERRNO_ENOLCK", "Erro da biblioteca de execução: nenhuma trava disponível"},
    {QVHr(0x8004EAFFu), "E_QVDF_ERRNO_ENOSYS", "Erro da biblioteca de execução: função não implementada"},
    {QVHr(0x8004EB00u), "E_QVDF_ERRNO_ENOTEMPTY", "Erro da biblioteca de execução: diretório não vazio"},
    {QVHr(0x8004EB01u), "E_QVDF_ERRNO_EILSEQ", "Erro da biblioteca de execução: sequência de bytes inválida"},
    {QVHr(0x8004EB02u), "E_QVDF_ERRNO_STRUNCATE", "Erro da biblioteca de execução: texto truncado"},
    {QVHr(0x8004EE47u), "E_QVDF_SEH_OUTRO", "Exceção estruturada de código não previsto"},
    {QVHr(0x80F90775u), "E_GE_RELATORIO_PERIODO_FATURAMENTO_INCOMPLETO",
     "Para listar as notas fiscais informe a data de faturamento inicial e a final"},
    {QVHr(0x810809C7u), "E_QVCR_VERSAO_DADOS_SUPERIOR_VERSAO_SISTEMA",
     "Os arquivos de dados são de uma versão mais nova que a deste servidor"},
    {QVHr(0x810809C8u), "E_QVCR_VERSAO_DADOS_INFERIOR_SEM_CONVERSAO",
     "Os arquivos de dados são de uma versão anterior e precisam ser convertidos; a conversão não está disponível"},
    {QVHr(0x810809CBu), "E_QVCR_ARQUIVO_TRA_ENCONTRADO",
     "Foi encontrado um arquivo temporário (.tra) de uma operação interrompida"},
    {QVHr(0x810809CFu), "E_QVCR_INICIALIZACAO_QVDATABASE_SEM_EMPRESA",
     "A base de dados foi inicializada sem empresa"},
    {QVHr(0x810809D8u), "E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA",
     "O tamanho do arquivo não corresponde a um número inteiro de registros"},
    {QVHr(0x810809D9u), "E_QVCR_TENTATIVA_LER_POSICAO_ZERO", "Tentativa de ler a posição zero do arquivo"},
    {QVHr(0x810809DAu), "E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO",
     "Posição de leitura além do último registro do arquivo"},
    {QVHr(0x810809DBu), "E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO",
     "Posição de gravação além do fim do arquivo"},
    {QVHr(0x810809E3u), "E_QVCR_ARQUIVO_NAO_EXISTE", "O arquivo não existe"},
    {QVHr(0x810809E7u), "E_QVCR_ARQUIVO_SINGLE_REG_NAO_TEM_TAMANHO_ESTRUTURA",
     "O arquivo de registro único não tem o tamanho do registro"},
    {QVHr(0x810809F1u), "E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO",
     "O nome do arquivo não corresponde ao formato do grupo de arquivos"},
    {QVHr(0x81080A04u), "E_QVCR_SERVIDOR_NAO_INICIALIZADO",
     "O objeto não foi inicializado (ou foi descartado após uma falha grave); inicialize um novo objeto"},
    {QVHr(0x81080A3Eu), "E_QVCR_VERSAO_CABECALHO_SUPERIOR_VERSAO_SISTEMA",
     "O cabeçalho do arquivo é de uma versão desconhecida por este sistema"},
    {QVHr(0x81080A3Fu), "E_QVCR_CRC_CABECALHO_NAO_CONFERE", "O CRC do cabeçalho do arquivo não confere"},
    {QVHr(0x81080A43u), "E_QVCR_NOME_ARQUIVO_NAO_CONFERE",
     "O nome gravado no cabeçalho não confere com o nome do arquivo"},
    {QVHr(0x81080A50u), "E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS",
     "O controle de criação de arquivos não confere com os arquivos do disco"},
    {QVHr(0x81080AA8u), "E_QVCR_OBJETO_SERVIDOR_INEXISTENTE",
     "O objeto servidor não existe (falha na criação ou descartado após uma falha grave)"},
    {QVHr(0x81080AA9u), "E_QVCR_COLUNA_INDEXACAO_INVALIDA", "Coluna de indexação inválida"},
    {QVHr(0x81080AACu), "E_QVCR_INDEXACAO_COM_POSICAO_ZERO", "Indexação com posição zero"},
    {QVHr(0x81080AADu), "E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA", "Chave de indexação repetida"},
    {QVHr(0x81080BFDu), "E_QVCR_VERSAO_INCOMPATIVEL",
     "A versão do programa cliente é incompatível com a deste servidor"},
    {QVHr(0x81080C07u), "E_QVCR_TAMANHO_CABECALHO_NAO_CONFERE", "O tamanho do cabeçalho do arquivo não confere"},
    {QVHr(0x81080C08u), "E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE",
     "O tamanho do arquivo não confere com o registrado no cabeçalho"},
    {QVHr(0x81080C09u), "E_QVCR_VERSAO_SISTEMA_INFERIOR_VERSAO_CRIACAO_CABECALHO",
     "O arquivo foi criado por uma versão mais nova do sistema"},
    {QVHr(0x81080C0Au), "E_QVCR_VERSAO_SISTEMA_INFERIOR_VERSAO_MODIFICACAO_ARQUIVO",
     "O arquivo foi alterado por uma versão mais nova do sistema"},
    {QVHr(0x81080C17u), "E_QVCR_CRC_INICIALIZACAO_INVALIDO", "O CRC do registro de inicialização é inválido"},
    {QVHr(0x81080C19u), "E_QVCR_ESTRUTURA_INICIALIZACAO_INVALIDA",
     "O registro de inicialização está incompleto ou é inválido"},
    {QVHr(0x81080C5Eu), "E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA",
     "O tamanho do arquivo de textos não corresponde a um número inteiro de textos"},
};

constexpr bool Ordenada() {
  for (std::size_t i = 1; i < std::size(kCodigos); ++i)
    if (static_cast<std::uint32_t>(kCodigos[i - 1].hr) >= static_cast<std::uint32_t>(kCodigos[i].hr)) return false;
  return true;
}
static_assert(Ordenada(), "the code table must stay sorted for its binary search");

}  // namespace

std::span<const QVCodigoSistema> QVTabelaCodigosSistema() { return kCodigos; }

const QVCodigoSistema* QVProcuraCodigoSistema(HRESULT hr) {
  const auto* fim = std::end(kCodigos);
  const auto* it = std::lower_bound(std::begin(kCodigos), fim, hr, [](const QVCodigoSistema& c, HRESULT v) {
    return static_cast<std::uint32_t>(c.hr) < static_cast<std::uint32_t>(v);
  });
  return it != fim && it->hr == hr ? it : nullptr;
}

const char* QVNomeSeveridade(int severidade) {
  switch (severidade) {
    case SEVERITY_SUCCESS: return "SEVERITY_SUCCESS";
    case SEVERITY_ERROR: return "SEVERITY_ERROR";
    default: return "Desconhecido ou novo código de SEVERITY";
  }
}

const char* QVNomeFacility(int facility) {
  if (facility == FACILITY_QVCR) return "FACILITY_QVCR";
  const char* nome = QVPlatformFacilityName(facility);
  return nome != nullptr ? nome : "Desconhecido ou novo código de FACILITY";
}

const char* QVNomeErroWin32(std::uint32_t codigo) {
  const QVPlatformError* e = QVPlatformErrorLookup(codigo);
  return e != nullptr ? e->name : "ERROR_DESCONHECIDO";
}

std::string QVNomeSimbolico(HRESULT hr) {
  if (const QVCodigoSistema* c = QVProcuraCodigoSistema(hr)) return c->nome;
  if (const QVPlatformStatus* p = QVPlatformStatusLookup(hr)) return p->name;
  if (HRESULT_FACILITY(hr) == FACILITY_WIN32 && FAILED(hr))
    if (const QVPlatformError* e = QVPlatformErrorLookup(static_cast<std::uint32_t>(HRESULT_CODE(hr))))
      return std::string("HRESULT_FROM_WIN32(") + e->name + ")";
  return {};
}

std::string QVGetDescricaoHRESULT(HRESULT hr) {
  if (const QVCodigoSistema* c = QVProcuraCodigoSistema(hr)) return c->mensagem;
  if (const QVPlatformStatus* p = QVPlatformStatusLookup(hr)) return p->text;
  if (HRESULT_FACILITY(hr) == FACILITY_WIN32)
    if (const QVPlatformError* e = QVPlatformErrorLookup(static_cast<std::uint32_t>(HRESULT_CODE(hr))))
      return e->text;
  char buf[64];
  std::snprintf(buf, sizeof buf, "Código de erro 0x%08X sem descrição", static_cast<std::uint32_t>(hr));
  return buf;
}

std::string QVDescricaoHResult(HRESULT hr) {
  if (const QVCodigoSistema* c = QVProcuraCodigoSistema(hr)) return c->mensagem;
  return QVGetDescricaoHRESULT(hr);
}
