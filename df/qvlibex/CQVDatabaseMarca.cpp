#include "df/qvlibex/CQVDatabaseMarca.h"

#include <algorithm>

#include "df/qvlibex/QVLog.h"

CQVDatabaseMarca::~CQVDatabaseMarca() {
  for (const std::uint8_t tipo : m_vecTomadas) QV_LOGA(m_nucleo.Desmarca(tipo));
}

bool CQVDatabaseMarca::Tomou(std::uint8_t tipo) const {
  return std::find(m_vecTomadas.begin(), m_vecTomadas.end(), tipo) != m_vecTomadas.end();
}

HRESULT CQVDatabaseMarca::Marca(std::uint8_t tipo) {
  QV_CHECK(m_nucleo.Marca(m_pConexao, m_sPasta, tipo, m_sModulo));
  if (!Tomou(tipo)) m_vecTomadas.push_back(tipo);
  return S_OK;
}

HRESULT CQVDatabaseMarca::Desmarca(std::uint8_t tipo) {
  if (!Tomou(tipo)) return S_OK;
  QV_CHECK(m_nucleo.Desmarca(tipo));
  m_vecTomadas.erase(std::find(m_vecTomadas.begin(), m_vecTomadas.end(), tipo));
  return S_OK;
}
