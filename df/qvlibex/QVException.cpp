#include "df/qvlibex/QVException.h"

#include <cstdio>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVStatus.h"
#include "platform/QVSystemInfo.h"

std::string CFileException::GetErrorMessage() const {
  std::string texto = "Falha de arquivo";
  if (!m_strFileName.empty()) texto += " (" + m_strFileName + ")";
  if (m_lOsError != 0) texto += ": " + QVTextoErroSO(m_lOsError);
  return texto;
}

std::string CQVMensagem::GetMensagem(std::int32_t lCodigo, std::uint16_t) {
  if (const QVCodigoSistema* c = QVProcuraCodigoSistema(QVHrDeMensagem(static_cast<std::uint32_t>(lCodigo))))
    return c->mensagem;
  return {};
}

std::string QVTextoErroSO(std::int32_t lErroSO) { return QVGetDescricaoHRESULT(HRESULT_FROM_WIN32(lErroSO)); }

std::string CQVException::GetErrorMessage() const {
  if (m_sMensagem.empty() && m_lCodigo != 0) m_sMensagem = CQVMensagem::GetMensagem(m_lCodigo);
  return m_sMensagem;
}

std::string CQVException::TextoRelatorio() const {
  std::string texto = GetErrorMessage();
  char buf[512];
  if (texto.empty()) {
    std::snprintf(buf, sizeof buf, "Erro desconhecido encontrado. Código (%d)", m_lCodigo);
    texto = buf;
  }
  if (m_lErroSO != 0) {
    std::snprintf(buf, sizeof buf, "\nErro do SO: %d - %s", m_lErroSO, QVTextoErroSO(m_lErroSO).c_str());
    texto += buf;
  }
  return texto;
}

int CQVException::ReportError(unsigned tipo, unsigned) const {
  if ((tipo & 0x70u) == 0) tipo |= MB_ICONEXCLAMATION;
  return MessageBoxA(nullptr, TextoRelatorio().c_str(), "Zelkorin", tipo);
}

namespace {
thread_local QVTratadorParametroInvalido t_tratador = nullptr;
}

QVTratadorParametroInvalido QVDefineTratadorParametroInvalido(QVTratadorParametroInvalido tratador) {
  QVTratadorParametroInvalido anterior = t_tratador;
  t_tratador = tratador;
  return anterior;
}

void QVParametroInvalido(const char* expressao, const char* funcao, const char* arquivo, unsigned linha) {
  if (t_tratador != nullptr) t_tratador(expressao, funcao, arquivo, linha);
  // Without a handler the event is a programming error with nowhere to go.
  throw new CInvalidArgException();
}
