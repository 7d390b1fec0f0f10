#include "suite/hostlink/CQVInicializador.h"

#include "df/qvlibex/QVLog.h"

HRESULT CQVInicializador::Inicializa(const IQVDF_Profiler* pProfiler) {
  if (m_bInicializado) QV_CHECK(Finaliza());
  if (pProfiler != nullptr) CopiaIdentidade(*pProfiler);
  QV_CHECK(OnInicializa());
  m_bInicializado = true;
  return S_OK;
}

HRESULT CQVInicializador::Finaliza() {
  if (!m_bInicializado) return S_OK;
  m_bInicializado = false;
  QV_CHECK(OnFinaliza());
  return S_OK;
}
