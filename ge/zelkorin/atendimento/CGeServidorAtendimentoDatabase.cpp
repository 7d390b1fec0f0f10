#include "ge/zelkorin/atendimento/CGeServidorAtendimentoDatabase.h"

#include <algorithm>

#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "platform/QVOsFile.h"

CGeServidorAtendimentoDatabase::CGeServidorAtendimentoDatabase() : CQVDataBase(QV_GE) {
  // Several server processes may serve one company: a file is held for
  // writing only by a write under the mark, and every operation looks at
  // the disk once per file it reads (see CGeServidorAtendimento).
  SetRetemArquivos(false);
  NovaEpocaLeitura();
  // The month of today until a call selects another: the first open loads
  // the month most clients work in.
  m_iMA = QVMesAnoDoDia(QVHoje());
  for (IQVFileBase* p : std::initializer_list<IQVFileBase*>{
           &m_ArqAtendimento, &m_ArqServico, &m_ArqDespesas, &m_ArqClassificacao, &m_ArqGerencial, &m_ArqSessao,
           &m_ArqEFD_REINF, &m_ArqRetencoes, &m_ArqDeducoes, &m_ArqPisCofins, &m_ArqRepresentantes,
           &m_ArqProcessoJurEFD, &m_ArqDescricaoDeducao, &m_ArqStringAtendimento, &m_ArqVersao,
           &m_AtendimentoTecnicoPropriedades, &m_AtendimentoTecnicoPropTXT, &m_ATTPonteirosIntegACM}) {
    AddFile(p);
  }
  // Not initialised yet: each only takes its month's name.
  static_cast<void>(m_ArqAtendimento.SelecionaPeriodo(m_iMA));
  static_cast<void>(m_ArqServico.SelecionaPeriodo(m_iMA));
  static_cast<void>(m_ArqDespesas.SelecionaPeriodo(m_iMA));
  static_cast<void>(m_ArqClassificacao.SelecionaPeriodo(m_iMA));
  static_cast<void>(m_ArqGerencial.SelecionaPeriodo(m_iMA));
  static_cast<void>(m_ArqSessao.SelecionaPeriodo(m_iMA));
  static_cast<void>(m_ArqEFD_REINF.SelecionaPeriodo(m_iMA));
}

// The files are members: they must be finalised while they still exist.
CGeServidorAtendimentoDatabase::~CGeServidorAtendimentoDatabase() { QV_LOGA(Finaliza()); }

HRESULT CGeServidorAtendimentoDatabase::OnInicializa() {
  std::lock_guard trava(m_mutex);
  // The company's folder of the module, resolved once: every open, look
  // and listing of the files would otherwise ask the session for it (a
  // query of the suite's store, two folder-case resolutions, a mkdir).
  if (GetDiretorio().empty()) {
    std::string sDiretorio;
    QV_CHECK(QVSessaoSuite().GetDiretorioDadosModulo(GetModulo(), GetEmpresa(), &sDiretorio));
    if (sDiretorio.empty()) QV_RETURN(E_QVDF_EMPRESA_SEM_DIRETORIO_DADOS);
    SetDiretorio(sDiretorio);
  }
  QV_CHECK(CQVDataBase::OnInicializa());
  return S_OK;
}

HRESULT CGeServidorAtendimentoDatabase::SelecionaMes(std::uint16_t iMA) {
  std::lock_guard trava(m_mutex);
  if (iMA == 0) QV_RETURN(E_INVALIDARG);
  if (iMA == m_iMA) return S_OK;
  // Unknown until all seven are on the new month.
  m_iMA = 0;
  QV_CHECK(m_ArqAtendimento.SelecionaPeriodo(iMA));
  QV_CHECK(m_ArqServico.SelecionaPeriodo(iMA));
  QV_CHECK(m_ArqDespesas.SelecionaPeriodo(iMA));
  QV_CHECK(m_ArqClassificacao.SelecionaPeriodo(iMA));
  QV_CHECK(m_ArqGerencial.SelecionaPeriodo(iMA));
  QV_CHECK(m_ArqSessao.SelecionaPeriodo(iMA));
  QV_CHECK(m_ArqEFD_REINF.SelecionaPeriodo(iMA));
  m_iMA = iMA;
  return S_OK;
}

HRESULT CGeServidorAtendimentoDatabase::GetDiretorioDados(std::string* pDiretorio) const {
  std::string sPath;
  QV_CHECK(CQVDataBaseUtil::GetPathArquivo(&m_ArqStringAtendimento, m_ArqStringAtendimento.GetNomeArquivo(), &sPath));
  *pDiretorio = sPath.substr(0, sPath.find_last_of('/'));
  return S_OK;
}

HRESULT CGeServidorAtendimentoDatabase::GetMesesAtendimento(std::vector<std::uint16_t>* pMeses) const {
  pMeses->clear();
  std::string sDiretorio;
  QV_CHECK(GetDiretorioDados(&sDiretorio));
  std::vector<std::string> nomes;
  HRESULT hr;
  QV_CHECK_HR(hr, QVListDirectory(sDiretorio, &nomes), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND),
              HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
  if (FAILED(hr)) return S_OK;  // no directory yet: no month
  const std::string sPadrao = QVPadraoGrupoMensal(m_ArqAtendimento.GetRaiz());
  for (const std::string& sNome : nomes)
    if (const std::uint16_t iMA = QVPeriodoMembroGrupo(sPadrao, sNome); iMA != 0) pMeses->push_back(iMA);
  std::sort(pMeses->begin(), pMeses->end());
  pMeses->erase(std::unique(pMeses->begin(), pMeses->end()), pMeses->end());
  return S_OK;
}
