#include "df/qvlibex/QVRegistrosDF.h"

#include <cstring>

#include "df/qvlibex/QVCrc64.h"
#include "platform/QVTaskMem.h"

namespace {

constexpr QVCampoPonteiro kCamposTexto[] = {QV_CAMPO_TEXTO(_REG_DF_TEXTOPS, pTexto, ulQtdBytes)};
constexpr QVCampoPonteiro kCamposFuncao[] = {
    QV_CAMPO_ARRAY(_REG_DF_FUNCAO_GENERICAPS, pListaBytes, ulQtdBytes)};
constexpr QVCampoPonteiro kCamposListaDmc[] = {QV_CAMPO_ARRAY(_REG_DF_LISTA_QVDMCPS, pLista, ulQuantidade)};

constexpr QVDescritorRegistro kTexto{"_REG_DF_TEXTOPS", sizeof(_REG_DF_TEXTOPS), kCamposTexto};
constexpr QVDescritorRegistro kFuncao{"_REG_DF_FUNCAO_GENERICAPS", sizeof(_REG_DF_FUNCAO_GENERICAPS),
                                      kCamposFuncao};
constexpr QVDescritorRegistro kInicializa{"_REG_DF_INICIALIZAPS", sizeof(_REG_DF_INICIALIZAPS), {}};
constexpr QVDescritorRegistro kErro{"_REG_DF_ERROPS", sizeof(_REG_DF_ERROPS), {}};
constexpr QVDescritorRegistro kListaDmc{"_REG_DF_LISTA_QVDMCPS", sizeof(_REG_DF_LISTA_QVDMCPS), kCamposListaDmc};

}  // namespace

template <> const QVDescritorRegistro& QVDescritor<_REG_DF_TEXTOPS>() { return kTexto; }
template <> const QVDescritorRegistro& QVDescritor<_REG_DF_FUNCAO_GENERICAPS>() { return kFuncao; }
template <> const QVDescritorRegistro& QVDescritor<_REG_DF_INICIALIZAPS>() { return kInicializa; }
template <> const QVDescritorRegistro& QVDescritor<_REG_DF_ERROPS>() { return kErro; }
template <> const QVDescritorRegistro& QVDescritor<_REG_DF_LISTA_QVDMCPS>() { return kListaDmc; }

HRESULT QVTextoPsDefine(_REG_DF_TEXTOPS* reg, std::string_view texto) {
  QVTextoPsLibera(reg);
  if (texto.empty()) return S_OK;
  if (texto.size() >= 0xFFFFFFFFu) return E_INVALIDARG;
  auto* buffer = static_cast<std::uint8_t*>(CoTaskMemAlloc(texto.size() + 1));
  if (buffer == nullptr) return E_OUTOFMEMORY;
  std::memcpy(buffer, texto.data(), texto.size());
  buffer[texto.size()] = 0;
  reg->pTexto = buffer;
  reg->ulQtdBytes = static_cast<std::uint32_t>(texto.size() + 1);
  return S_OK;
}

std::string QVTextoPsLe(const _REG_DF_TEXTOPS& reg) {
  if (reg.pTexto == nullptr || reg.ulQtdBytes == 0) return {};
  const auto* p = reinterpret_cast<const char*>(reg.pTexto);
  const void* zero = std::memchr(p, 0, reg.ulQtdBytes);
  const std::size_t n = zero != nullptr ? static_cast<std::size_t>(static_cast<const char*>(zero) - p) : reg.ulQtdBytes;
  return std::string(p, n);
}

void QVTextoPsLibera(_REG_DF_TEXTOPS* reg) {
  CoTaskMemFree(reg->pTexto);
  reg->pTexto = nullptr;
  reg->ulQtdBytes = 0;
}

void QVCopiaCampoTexto(char* campo, std::size_t n, std::string_view texto) {
  if (n == 0) return;
  const std::size_t copiar = texto.size() < n - 1 ? texto.size() : n - 1;
  std::memcpy(campo, texto.data(), copiar);
  std::memset(campo + copiar, 0, n - copiar);
}

std::uint64_t QVCrcInicializaPS(const _REG_DF_INICIALIZAPS& reg) {
  return QVCrc64(&reg, offsetof(_REG_DF_INICIALIZAPS, uiCRC));
}

_REG_DF_INICIALIZAPS QVMontaInicializaPS(const QVDadosInicializacao& d) {
  _REG_DF_INICIALIZAPS reg;
  std::memset(&reg, 0, sizeof reg);
  reg.ulUsuario = d.usuario;
  reg.ulNumeroSessao = d.numeroSessao;
  reg.ulLinhaFonte = d.linhaFonte;
  reg.usVersaoVireo = kQVVersaoSistema;
  QVCopiaCampoTexto(reg.szEmpresa, d.empresa);
  QVCopiaCampoTexto(reg.szAplicativo, d.aplicativo);
  QVCopiaCampoTexto(reg.szModuleName, d.moduleName);
  QVCopiaCampoTexto(reg.szArquivoFonte, d.arquivoFonte);
  QVCopiaCampoTexto(reg.szNomeUsuarioDominio, d.nomeUsuarioDominio);
  reg.cControle = 'B';
  reg.cWTS = d.cWTS;
  reg.uiCRC = QVCrcInicializaPS(reg);
  return reg;
}
