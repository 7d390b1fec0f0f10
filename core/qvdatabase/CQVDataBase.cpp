#include "core/qvdatabase/CQVDataBase.h"

#include "df/qvlibex/QVLog.h"

CQVDataBase::~CQVDataBase() { QV_LOGA(Finaliza()); }

void CQVDataBase::AddFile(IQVFileBase* pFile) { m_Arquivos[pFile->GetNomeArquivo()] = pFile; }

void CQVDataBase::RemoveFile(const std::string& sNomeArquivo) { m_Arquivos.erase(sNomeArquivo); }

HRESULT CQVDataBase::OnInicializa() {
  QV_CHECK(CQVInicializador::OnInicializa());
  for (auto& file : m_Arquivos) QV_CHECK(file.second->Inicializa(this));
  return S_OK;
}

HRESULT CQVDataBase::FechaArquivos() {
  // Every file is finalised even when one fails; the first failure is the
  // result.
  HRESULT hrPrimeiro = S_OK;
  for (auto& file : m_Arquivos) {
    const HRESULT hr = QV_LOGA(file.second->Finaliza());
    if (FAILED(hr) && SUCCEEDED(hrPrimeiro)) hrPrimeiro = hr;
  }
  return hrPrimeiro;
}

HRESULT CQVDataBase::LiberaArquivos() {
  HRESULT hrPrimeiro = S_OK;
  for (auto& file : m_Arquivos) {
    const HRESULT hr = QV_LOGA(file.second->LiberaGravacao());
    if (FAILED(hr) && SUCCEEDED(hrPrimeiro)) hrPrimeiro = hr;
  }
  return hrPrimeiro;
}

HRESULT CQVDataBase::OnFinaliza() {
  const HRESULT hrArquivos = FechaArquivos();
  const HRESULT hr = QV_LOGA(CQVInicializador::OnFinaliza());
  return FAILED(hrArquivos) ? hrArquivos : hr;
}
