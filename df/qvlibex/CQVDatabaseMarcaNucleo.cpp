#include "df/qvlibex/CQVDatabaseMarcaNucleo.h"

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"

namespace {

// A mark routine's plain-number result as a status: message numbers are
// widened, the negative platform statuses are statuses already. A failure
// is logged with the number as the routine gave it.
HRESULT StatusDaMarca(std::int32_t iRetorno, const QVLocalFonte& local, const char* expressao) {
  if (iRetorno == 0) return S_OK;
  const HRESULT hr = iRetorno < 0 ? iRetorno : QVHrDeMensagem(static_cast<std::uint32_t>(iRetorno));
  try {
    QVEscreveLinhaErroTexto(QVSinkAtual(), QVNomeQualificado(local.assinatura), QVNomeFonte(local.arquivo),
                            local.linha, QVFormataFalhaValor(expressao, "iRetorno", iRetorno, hr));
  } catch (...) {
    // Logging never changes the outcome.
  }
  return hr;
}

}  // namespace

CQVDatabaseMarcaNucleo::CQVDatabaseMarcaNucleo() { m_mapMarcas.reserve(10); }

HRESULT CQVDatabaseMarcaNucleo::Marca(const IQVDF_Profiler* pConexao, const std::string& sPasta, std::uint8_t tipo,
                                      const std::string& modulo) {
  const std::uint16_t usUsuario = pConexao != nullptr ? pConexao->GetUsuario() : 0;
  std::lock_guard<std::mutex> trava(m_mutex);
  std::unique_ptr<CQVArqMarca>& pArqMarca = m_mapMarcas[tipo];
  if (!pArqMarca) pArqMarca = std::make_unique<CQVArqMarca>();
  const std::int32_t iRetorno = pArqMarca->Marca(sPasta, tipo, usUsuario, modulo);
  return StatusDaMarca(iRetorno, QV_LOCAL, "pArqMarca->Marca(sPasta, tipo, usUsuario, modulo)");
}

HRESULT CQVDatabaseMarcaNucleo::Desmarca(std::uint8_t tipo) {
  std::lock_guard<std::mutex> trava(m_mutex);
  const auto it = m_mapMarcas.find(tipo);
  if (it == m_mapMarcas.end()) return S_OK;
  const std::int32_t iRetorno = it->second->Desmarca();
  return StatusDaMarca(iRetorno, QV_LOCAL, "it->second->Desmarca()");
}

bool CQVDatabaseMarcaNucleo::EstaMarcado(std::uint8_t tipo) const {
  std::lock_guard<std::mutex> trava(m_mutex);
  const auto it = m_mapMarcas.find(tipo);
  return it != m_mapMarcas.end() && it->second->EstaMarcado();
}
