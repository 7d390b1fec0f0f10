#include "platform/QVStatusNames.h"

namespace {

constexpr QVPlatformStatus kStatus[] = {
    {QVHr(0x00000000u), "S_OK", "Operação concluída com sucesso"},
    {QVHr(0x00000001u), "S_FALSE", "Operação concluída (resultado falso)"},
    {QVHr(0x80004001u), "E_NOTIMPL", "Operação não implementada"},
    {QVHr(0x80004002u), "E_NOINTERFACE", "Interface não suportada"},
    {QVHr(0x80004003u), "E_POINTER", "Ponteiro inválido"},
    {QVHr(0x80004004u), "E_ABORT", "Operação abortada"},
    {QVHr(0x80004005u), "E_FAIL", "Falha não especificada"},
    {QVHr(0x8000FFFFu), "E_UNEXPECTED", "Falha inesperada"},
    {QVHr(0x80010105u), "RPC_E_SERVERFAULT", "O servidor falhou ao executar a chamada"},
    {QVHr(0x80010108u), "RPC_E_DISCONNECTED", "O objeto foi desconectado de seus clientes"},
    {QVHr(0x8001011Fu), "RPC_E_TIMEOUT", "A chamada excedeu o tempo de espera"},
    {QVHr(0x80020005u), "DISP_E_TYPEMISMATCH", "Tipo incompatível"},
    {QVHr(0x8002000Au), "DISP_E_OVERFLOW", "Estouro de valor"},
    {QVHr(0x80040110u), "CLASS_E_NOAGGREGATION", "A classe não admite agregação"},
    {QVHr(0x80040111u), "CLASS_E_CLASSNOTAVAILABLE", "A fábrica não fornece a classe pedida"},
    {QVHr(0x80040154u), "REGDB_E_CLASSNOTREG", "Classe não registrada"},
    {QVHr(0x800401FBu), "CO_E_OBJISREG", "O objeto já está registrado"},
    {QVHr(0x80070005u), "E_ACCESSDENIED", "Acesso negado"},
    {QVHr(0x80070006u), "E_HANDLE", "Identificador inválido"},
    {QVHr(0x8007000Eu), "E_OUTOFMEMORY", "Memória insuficiente"},
    {QVHr(0x80070057u), "E_INVALIDARG", "Um ou mais argumentos são inválidos"},
    {QVHr(0x800706F7u), "RPC_X_BAD_STUB_DATA", "Dados inválidos recebidos na chamada remota"},
    {QVHr(0x80080005u), "CO_E_SERVER_EXEC_FAILURE", "Falha ao executar o servidor"},
};

constexpr QVPlatformError kErrors[] = {
    {0, "ERROR_SUCCESS", "Operação concluída com sucesso"},
    {1, "ERROR_INVALID_FUNCTION", "Função incorreta"},
    {2, "ERROR_FILE_NOT_FOUND", "O arquivo não foi encontrado"},
    {3, "ERROR_PATH_NOT_FOUND", "O caminho não foi encontrado"},
    {4, "ERROR_TOO_MANY_OPEN_FILES", "Arquivos abertos demais"},
    {5, "ERROR_ACCESS_DENIED", "Acesso negado"},
    {6, "ERROR_INVALID_HANDLE", "Identificador inválido"},
    {7, "ERROR_ARENA_TRASHED", "Os blocos de controle de memória foram destruídos"},
    {8, "ERROR_NOT_ENOUGH_MEMORY", "Memória insuficiente"},
    {9, "ERROR_INVALID_BLOCK", "Bloco de memória inválido"},
    {10, "ERROR_BAD_ENVIRONMENT", "Ambiente incorreto"},
    {11, "ERROR_BAD_FORMAT", "Formato incorreto"},
    {12, "ERROR_INVALID_ACCESS", "Código de acesso inválido"},
    {13, "ERROR_INVALID_DATA", "Dados inválidos"},
    {14, "ERROR_OUTOFMEMORY", "Memória insuficiente"},
    {15, "ERROR_INVALID_DRIVE", "Unidade não encontrada"},
    {16, "ERROR_CURRENT_DIRECTORY", "O diretório não pode ser removido"},
    {17, "ERROR_NOT_SAME_DEVICE", "O arquivo não pode ser movido para outra unidade"},
    {18, "ERROR_NO_MORE_FILES", "Não há mais arquivos"},
    {19, "ERROR_WRITE_PROTECT", "A mídia está protegida contra gravação"},
    {20, "ERROR_BAD_UNIT", "Dispositivo não encontrado"},
    {21, "ERROR_NOT_READY", "O dispositivo não está pronto"},
    {22, "ERROR_BAD_COMMAND", "Comando não reconhecido pelo dispositivo"},
    {23, "ERROR_CRC", "Erro de dados (verificação cíclica de redundância)"},
    {24, "ERROR_BAD_LENGTH", "Comprimento incorreto"},
    {25, "ERROR_SEEK", "Não foi possível posicionar no local pedido"},
    {26, "ERROR_NOT_DOS_DISK", "Disco ou arquivo não acessível"},
    {27, "ERROR_SECTOR_NOT_FOUND", "Setor não encontrado"},
    {28, "ERROR_OUT_OF_PAPER", "Sem papel"},
    {29, "ERROR_WRITE_FAULT", "Falha de gravação no dispositivo"},
    {30, "ERROR_READ_FAULT", "Falha de leitura no dispositivo"},
    {31, "ERROR_GEN_FAILURE", "O dispositivo não está funcionando"},
    {32, "ERROR_SHARING_VIOLATION", "O arquivo está em uso por outro processo"},
    {33, "ERROR_LOCK_VIOLATION", "Parte do arquivo está travada por outro processo"},
    {34, "ERROR_WRONG_DISK", "Disco incorreto"},
    {36, "ERROR_SHARING_BUFFER_EXCEEDED", "Arquivos abertos demais para compartilhamento"},
    {38, "ERROR_HANDLE_EOF", "Fim do arquivo atingido"},
    {39, "ERROR_HANDLE_DISK_FULL", "O disco está cheio"},
    {50, "ERROR_NOT_SUPPORTED", "Operação não suportada"},
    {53, "ERROR_BAD_NETPATH", "Caminho de rede não encontrado"},
    {64, "ERROR_NETNAME_DELETED", "O nome de rede não está mais disponível"},
    {67, "ERROR_BAD_NET_NAME", "Nome de rede não encontrado"},
    {80, "ERROR_FILE_EXISTS", "O arquivo já existe"},
    {82, "ERROR_CANNOT_MAKE", "O diretório ou arquivo não pode ser criado"},
    {87, "ERROR_INVALID_PARAMETER", "Parâmetro incorreto"},
    {109, "ERROR_BROKEN_PIPE", "O canal foi encerrado"},
    {110, "ERROR_OPEN_FAILED", "Não foi possível abrir o dispositivo ou arquivo"},
    {111, "ERROR_BUFFER_OVERFLOW", "Nome de arquivo longo demais"},
    {112, "ERROR_DISK_FULL", "Não há espaço suficiente no disco"},
    {120, "ERROR_CALL_NOT_IMPLEMENTED", "Função não suportada neste sistema"},
    {122, "ERROR_INSUFFICIENT_BUFFER", "Área de dados pequena demais"},
    {123, "ERROR_INVALID_NAME", "Sintaxe incorreta do nome de arquivo, diretório ou volume"},
    {126, "ERROR_MOD_NOT_FOUND", "Módulo não encontrado"},
    {127, "ERROR_PROC_NOT_FOUND", "Procedimento não encontrado"},
    {131, "ERROR_NEGATIVE_SEEK", "Posição antes do início do arquivo"},
    {145, "ERROR_DIR_NOT_EMPTY", "O diretório não está vazio"},
    {158, "ERROR_NOT_LOCKED", "O segmento já está destravado"},
    {170, "ERROR_BUSY", "O recurso pedido está em uso"},
    {183, "ERROR_ALREADY_EXISTS", "Não é possível criar um arquivo já existente"},
    {203, "ERROR_ENVVAR_NOT_FOUND", "Variável de ambiente não encontrada"},
    {206, "ERROR_FILENAME_EXCED_RANGE", "Nome de arquivo ou extensão longo demais"},
    {232, "ERROR_NO_DATA", "O canal está sendo fechado"},
    {234, "ERROR_MORE_DATA", "Há mais dados disponíveis"},
    {259, "ERROR_NO_MORE_ITEMS", "Não há mais itens"},
    {267, "ERROR_DIRECTORY", "Nome de diretório inválido"},
    {288, "ERROR_NOT_OWNER", "Tentativa de liberar um recurso que não pertence ao chamador"},
    {299, "ERROR_PARTIAL_COPY", "Apenas parte da operação foi concluída"},
    {487, "ERROR_INVALID_ADDRESS", "Endereço inválido"},
    {534, "ERROR_ARITHMETIC_OVERFLOW", "Estouro aritmético"},
    {995, "ERROR_OPERATION_ABORTED", "Operação de entrada e saída abortada"},
    {997, "ERROR_IO_PENDING", "Operação de entrada e saída em andamento"},
    {998, "ERROR_NOACCESS", "Acesso inválido à memória"},
    {1001, "ERROR_STACK_OVERFLOW", "Recursão profunda demais; estouro de pilha"},
    {1117, "ERROR_IO_DEVICE", "Erro de dispositivo de entrada e saída"},
    {1224, "ERROR_USER_MAPPED_FILE", "O arquivo está mapeado por um processo"},
    {1392, "ERROR_FILE_CORRUPT", "O arquivo ou diretório está corrompido"},
    {1460, "ERROR_TIMEOUT", "Tempo de espera esgotado"},
    {1722, "RPC_S_SERVER_UNAVAILABLE", "O servidor de chamadas remotas não está disponível"},
    {1723, "RPC_S_SERVER_TOO_BUSY", "O servidor de chamadas remotas está ocupado demais"},
    {1726, "RPC_S_CALL_FAILED", "A chamada remota falhou"},
    {1745, "RPC_S_PROCNUM_OUT_OF_RANGE", "O número do procedimento está fora do intervalo"},
    {1783, "RPC_X_BAD_STUB_DATA", "Dados inválidos na chamada remota"},
    {6009, "ERROR_FILE_READ_ONLY", "O arquivo é somente leitura"},
    {10048, "WSAEADDRINUSE", "O endereço já está em uso"},
    {10049, "WSAEADDRNOTAVAIL", "O endereço pedido não é válido neste computador"},
    {11001, "WSAHOST_NOT_FOUND", "Host desconhecido"},
};

struct Facility {
  int facility;
  const char* name;
};

constexpr Facility kFacilities[] = {
    {0, "FACILITY_NULL"},        {1, "FACILITY_RPC"},          {2, "FACILITY_DISPATCH"},
    {3, "FACILITY_STORAGE"},     {4, "FACILITY_ITF"},          {7, "FACILITY_WIN32"},
    {8, "FACILITY_WINDOWS"},     {9, "FACILITY_SECURITY"},     {10, "FACILITY_CONTROL"},
    {11, "FACILITY_CERT"},       {12, "FACILITY_INTERNET"},    {13, "FACILITY_MEDIASERVER"},
    {14, "FACILITY_MSMQ"},       {15, "FACILITY_SETUPAPI"},    {16, "FACILITY_SCARD"},
    {17, "FACILITY_COMPLUS"},    {18, "FACILITY_AAF"},         {19, "FACILITY_URT"},
    {20, "FACILITY_ACS"},        {21, "FACILITY_DPLAY"},       {22, "FACILITY_UMI"},
    {23, "FACILITY_SXS"},        {24, "FACILITY_WINDOWS_CE"},  {25, "FACILITY_HTTP"},
    {32, "FACILITY_BACKGROUNDCOPY"}, {33, "FACILITY_CONFIGURATION"}, {34, "FACILITY_STATE_MANAGEMENT"},
    {35, "FACILITY_METADIRECTORY"},  {36, "FACILITY_WINDOWSUPDATE"}, {37, "FACILITY_DIRECTORYSERVICE"},
};

}  // namespace

const QVPlatformStatus* QVPlatformStatusLookup(HRESULT hr) {
  for (const auto& s : kStatus)
    if (s.hr == hr) return &s;
  return nullptr;
}

const QVPlatformError* QVPlatformErrorLookup(std::uint32_t code) {
  for (const auto& e : kErrors)
    if (e.code == code) return &e;
  return nullptr;
}

const char* QVPlatformFacilityName(int facility) {
  for (const auto& f : kFacilities)
    if (f.facility == facility) return f.name;
  return nullptr;
}
