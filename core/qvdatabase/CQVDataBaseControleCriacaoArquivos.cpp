#include "core/qvdatabase/CQVDataBaseControleCriacaoArquivos.h"

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "core/qvdatabase/QVFileNameFormat.h"
#include "core/qvdatabase/QVTextFile.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"

bool CQVDataBaseControleCriacaoArquivos::EhExcluido(const std::string& sNomeArquivo) {
  const std::string sExtensao = CQVDataBaseUtil::Extensao(sNomeArquivo);
  return QVNomesIguais(sExtensao, "tra") || QVNomesIguais(sExtensao, "ofl") ||
         QVNomesIguais(sNomeArquivo, QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS);
}

HRESULT CQVDataBaseControleCriacaoArquivos::Inicializa(IQVFileBase* pArquivo) {
  m_pArquivo = pArquivo;
  return S_OK;
}

HRESULT CQVDataBaseControleCriacaoArquivos::LeLista(std::vector<std::string>* pNomes) {
  pNomes->clear();
  // Read through a read-only database: no write lock, nothing written.
  CQVDataBase qvDB(m_eModulo);
  qvDB.SetSomenteLeitura(true);
  qvDB.SetDiretorio(m_pArquivo->GetDiretorio());
  QV_CHECK(qvDB.Inicializa(m_pArquivo));
  CQVTextFile qvControle(QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS, m_eModulo);
  QV_CHECK(qvControle.Inicializa(&qvDB));
  for (const CQVTextFile::Entrada& e : *qvControle.GetPtrRegistros()) pNomes->push_back(e.sTexto);
  return S_OK;
}

HRESULT CQVDataBaseControleCriacaoArquivos::PossuiControleCriacaoArquivos(bool* pbPossui) {
  *pbPossui = false;
  std::vector<std::string> nomes;
  QV_CHECK(LeLista(&nomes));
  for (const std::string& n : nomes) *pbPossui = *pbPossui || QVNomesIguais(n, m_pArquivo->GetNomeArquivo());
  return S_OK;
}

HRESULT CQVDataBaseControleCriacaoArquivos::CriaControleCriacaoArquivos() {
  CQVDataBase qvDB(m_eModulo);
  qvDB.SetDiretorio(m_pArquivo->GetDiretorio());
  QV_CHECK(qvDB.Inicializa(m_pArquivo));
  CQVTextFile qvControle(QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS, m_eModulo);
  QV_CHECK(qvControle.Inicializa(&qvDB));
  QVUInt uiPosicao = 0;
  QV_CHECK(qvControle.Grava(uiPosicao, m_pArquivo->GetNomeArquivo()));
  return S_OK;
}

HRESULT CQVDataBaseControleCriacaoArquivos::RemoveControleCriacaoArquivos(const std::string& sNomeArquivo) {
  const std::string sNome = sNomeArquivo.empty() ? m_pArquivo->GetNomeArquivo() : sNomeArquivo;
  std::vector<std::string> aRegistros;
  QV_CHECK(LeLista(&aRegistros));
  std::vector<std::string> aRegistrosNew;
  for (const std::string& n : aRegistros)
    if (!QVNomesIguais(n, sNome)) aRegistrosNew.push_back(n);
  if (aRegistrosNew.size() == aRegistros.size()) return S_OK;  // not listed: nothing to rewrite

  HRESULT hr = EscreveCopia(aRegistrosNew);
  // A copy found there is another's trace and stays.
  if (hr == E_QVCR_ARQUIVO_TRA_ENCONTRADO) return hr;
  if (SUCCEEDED(hr))
    hr = QV_LOGA(
        CQVDataBaseUtil::RenomeiaArquivoTRA(m_pArquivo, m_eModulo, QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS));
  if (FAILED(hr)) {
    // The copy this removal made would stop every later one: it goes (a
    // failure to delete it is logged; the first failure is the answer).
    const std::string sCopia = CQVDataBaseUtil::NomeArquivoTRA(QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS);
    QV_LOGA(CQVDataBaseUtil::DeletaArquivo(m_pArquivo, m_eModulo, sCopia, EQVDataBase_DeletaArquivoFlag::eNenhum));
  }
  return hr;
}

HRESULT CQVDataBaseControleCriacaoArquivos::EscreveCopia(const std::vector<std::string>& aRegistrosNew) {
  CQVDataBase qvDataBase(m_eModulo);
  qvDataBase.SetDiretorio(m_pArquivo->GetDiretorio());
  QV_CHECK(qvDataBase.Inicializa(m_pArquivo));
  CQVTextFile qvFileNew(CQVDataBaseUtil::NomeArquivoTRA(QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS), m_eModulo);
  QV_CHECK(qvFileNew.Inicializa(&qvDataBase));
  if (qvFileNew.ExisteArquivo()) QV_RETURN(E_QVCR_ARQUIVO_TRA_ENCONTRADO);
  QV_CHECK(qvFileNew.AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao));
  QVUInt uiPosicao = 0;
  QV_CHECK(qvFileNew.GravaColecao(uiPosicao, aRegistrosNew));
  QV_CHECK(qvFileNew.Finaliza());
  return S_OK;
}

HRESULT CQVDataBaseControleCriacaoArquivos::GerenciaControleCriacaoArquivos(EQVDataBase_ModoAbertura eModoAbertura) {
  if (!m_bHabilitado || m_pArquivo == nullptr || !QVModoGravacao(eModoAbertura) ||
      EhExcluido(m_pArquivo->GetNomeArquivo()))
    return S_OK;
  std::string sPath;
  QV_CHECK(CQVDataBaseUtil::GetPathArquivo(m_pArquivo, m_pArquivo->GetNomeArquivo(), &sPath));
  bool bPossui = false;
  QV_CHECK(PossuiControleCriacaoArquivos(&bPossui));
  if (QVFileExists(sPath)) {
    if (!bPossui) QV_CHECK(CriaControleCriacaoArquivos());
    return S_OK;
  }
  if (bPossui) {
    QVLogaFalhaHr(QV_LOCAL, "E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS",
                  E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS,
                  {{"m_sNomeArquivo", m_pArquivo->GetNomeArquivo()},
                   {"(QVUInt) eModoAbertura", std::to_string(static_cast<QVUInt>(eModoAbertura))}});
    return E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS;
  }
  return S_OK;
}
