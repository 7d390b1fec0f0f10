#include "core/qvdatabase/QVGroupFileBase.h"

#include <chrono>

#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "core/qvdatabase/QVFileNameFormat.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"

namespace {

// The period text of a name: the characters under the pattern's '?' run.
std::string Prefixo(const std::string& sPadrao) { return sPadrao.substr(0, sPadrao.find('?')); }

// Wider than any file system's granularity for a directory's time of change.
constexpr std::int64_t kMargemRelogioNs = 2'000'000'000;

}  // namespace

CQVGroupFileBase::CQVGroupFileBase(std::string sPadrao, std::uint32_t eModulo)
    : CQVFileBase(std::move(sPadrao), eModulo) {}

CQVGroupFileBase::~CQVGroupFileBase() {
  if (EstaInicializado()) QV_LOGA(Finaliza());
}

bool CQVGroupFileBase::CorrespondeAoPadrao(const std::string& sNome) const {
  return QVCorrespondeAoPadraoGrupo(m_sNomeArquivo, sNome);
}

std::uint64_t CQVGroupFileBase::ChaveDoNomeArquivo(const std::string& sNome) const {
  return QVPeriodoMembroGrupo(m_sNomeArquivo, sNome);
}

std::string CQVGroupFileBase::NomeArquivoDaChave(std::uint64_t uiChave) const {
  const std::string sPrefixo = Prefixo(m_sNomeArquivo);
  const std::string sComPeriodo = CQVFileNameFormatMa<10>::Nome(sPrefixo, static_cast<std::uint16_t>(uiChave));
  // The period goes where the pattern has its '?' run; the rest of the
  // pattern (its extension) stays as written.
  const std::size_t nInterrogacoes = m_sNomeArquivo.find_first_not_of('?', sPrefixo.size()) - sPrefixo.size();
  return sPrefixo + sComPeriodo.substr(sPrefixo.size(), nInterrogacoes) +
         m_sNomeArquivo.substr(sPrefixo.size() + nInterrogacoes);
}

HRESULT CQVGroupFileBase::InicializaMembro(CQVFileBase* pQVFile) {
  if (!CQVFileBase::GetDiretorio().empty()) pQVFile->SetDiretorio(CQVFileBase::GetDiretorio());
  if (m_bControleDesabilitado) QV_CHECK_ARQ(pQVFile->DesabilitaControleCriacaoArquivos());
  if (GetDataBase() != nullptr) {
    QV_CHECK_ARQ(pQVFile->Inicializa(GetDataBase()));
  } else {
    QV_CHECK_ARQ(pQVFile->Inicializa(this));
  }
  return S_OK;
}

HRESULT CQVGroupFileBase::OnInicializa() {
  std::lock_guard lock(m_mutex);
  m_Membros.clear();
  m_iDiretorioMudouNs = -1;
  QV_CHECK_ARQ(CQVFileBase::OnInicializa());
  QV_CHECK_ARQ(IncluiMembrosDoDiretorio(true));
  return S_OK;
}

HRESULT CQVGroupFileBase::IncluiMembrosDoDiretorio(bool bReter) {
  std::lock_guard lock(m_mutex);
  std::string sPathArquivo;
  QV_CHECK_ARQ(CQVDataBaseUtil::GetPathArquivo(this, Prefixo(m_sNomeArquivo), &sPathArquivo));
  const std::string sDiretorio = sPathArquivo.substr(0, sPathArquivo.find_last_of('/'));
  // Before the stat: a change during the listing leaves a newer time than
  // the one recorded, and the next call lists again.
  const std::int64_t iAgoraNs = std::chrono::duration_cast<std::chrono::nanoseconds>(
                                    std::chrono::system_clock::now().time_since_epoch())
                                    .count();
  std::int64_t iMudouNs = 0;
  QV_CHECK_ARQ(QVGetDirectoryChangeTime(sDiretorio, &iMudouNs), {"sDiretorio", sDiretorio});
  // A change in the same tick of the file system's clock as the one seen
  // would not move the time: the listing is trusted only once it began well
  // after the change it saw.
  if (iMudouNs == m_iDiretorioMudouNs && m_iListadoEmNs - iMudouNs > kMargemRelogioNs) return S_OK;
  std::vector<std::string> nomes;
  const HRESULT hrLista = QVListDirectory(sDiretorio, &nomes);
  // A directory that does not exist yet holds no members.
  if (FAILED(hrLista) && hrLista != HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND) &&
      hrLista != HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND))
    QV_CHECK_ARQ(hrLista, {"sDiretorio", sDiretorio});
  for (const std::string& sNome : nomes) {
    if (!CorrespondeAoPadrao(sNome)) continue;
    const std::uint64_t uiChave = ChaveDoNomeArquivo(sNome);
    if (uiChave == 0) QV_RETURN_ARQ(E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO, {"sNome", sNome});
    if (Membro(uiChave) != nullptr) continue;
    // The name the system knows: the open renames a file found under
    // another letter case.
    std::unique_ptr<CQVFileBase> pQVFile = NewFile(NomeArquivoDaChave(uiChave));
    pQVFile->SetCargaSemReter(!bReter);
    QV_CHECK_ARQ(InicializaMembro(pQVFile.get()), {"sNome", sNome});
    m_Membros[uiChave] = std::move(pQVFile);
  }
  m_iDiretorioMudouNs = iMudouNs;
  m_iListadoEmNs = iAgoraNs;
  return S_OK;
}

HRESULT CQVGroupFileBase::OnFinaliza() {
  std::lock_guard lock(m_mutex);
  HRESULT hrPrimeiro = S_OK;
  for (auto& it : m_Membros) {
    const HRESULT hr = it.second->Finaliza();
    if (FAILED(hr)) {
      LogaFalha(__func__, __LINE__, "it.second->Finaliza()", hr, {{"uiChaveNomeArquivo", std::to_string(it.first)}});
      if (SUCCEEDED(hrPrimeiro)) hrPrimeiro = hr;
    }
  }
  m_Membros.clear();
  const HRESULT hr = CQVFileBase::OnFinaliza();
  return FAILED(hrPrimeiro) ? hrPrimeiro : hr;
}

// Counts and key lists have no status: a failure to look again (logged)
// leaves the members known.
QVUInt CQVGroupFileBase::GetQtdRegistros() {
  std::lock_guard lock(m_mutex);
  static_cast<void>(IncluiMembrosDoDiretorio(false));
  QVUInt n = 0;
  for (auto& it : m_Membros) n += it.second->GetQtdRegistros();
  return n;
}

QVUInt CQVGroupFileBase::GetQtdRegistros(std::uint64_t uiChaveNomeArquivo) {
  CQVFileBase* p = nullptr;
  static_cast<void>(ProcuraMembro(uiChaveNomeArquivo, &p));
  return p != nullptr ? p->GetQtdRegistros() : 0;
}

HRESULT CQVGroupFileBase::ProcuraMembro(std::uint64_t uiChaveNomeArquivo, CQVFileBase** ppMembro) {
  std::lock_guard lock(m_mutex);
  *ppMembro = Membro(uiChaveNomeArquivo);
  if (*ppMembro != nullptr || uiChaveNomeArquivo == 0 || uiChaveNomeArquivo > kQVMesAnoMaximo) return S_OK;
  // Another process may have made the month's file since.
  QV_CHECK_ARQ(IncluiMembrosDoDiretorio(false), {"uiChaveNomeArquivo", std::to_string(uiChaveNomeArquivo)});
  *ppMembro = Membro(uiChaveNomeArquivo);
  return S_OK;
}

CQVFileBase* CQVGroupFileBase::Membro(std::uint64_t uiChaveNomeArquivo) const {
  std::lock_guard lock(m_mutex);
  const auto it = m_Membros.find(uiChaveNomeArquivo);
  return it != m_Membros.end() ? it->second.get() : nullptr;
}

HRESULT CQVGroupFileBase::LookupMapFiles(std::uint64_t uiChaveNomeArquivo, IQVFileBase** ppQVFileInterface) {
  CQVFileBase* p = nullptr;
  *ppQVFileInterface = nullptr;
  QV_CHECK_ARQ(ProcuraMembro(uiChaveNomeArquivo, &p), {"uiChaveNomeArquivo", std::to_string(uiChaveNomeArquivo)});
  *ppQVFileInterface = p;
  return S_OK;
}

HRESULT CQVGroupFileBase::IncluiMembro(std::uint64_t uiChaveNomeArquivo, CQVFileBase** ppMembro, bool bReter) {
  std::lock_guard lock(m_mutex);
  *ppMembro = Membro(uiChaveNomeArquivo);
  if (*ppMembro != nullptr) return S_OK;
  if (uiChaveNomeArquivo == 0 || uiChaveNomeArquivo > kQVMesAnoMaximo)
    QV_RETURN_ARQ(E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO, {"uiChaveNomeArquivo", std::to_string(uiChaveNomeArquivo)});
  std::unique_ptr<CQVFileBase> pQVFile = NewFile(NomeArquivoDaChave(uiChaveNomeArquivo));
  pQVFile->SetCargaSemReter(!bReter);
  QV_CHECK_ARQ(InicializaMembro(pQVFile.get()), {"uiChaveNomeArquivo", std::to_string(uiChaveNomeArquivo)});
  *ppMembro = pQVFile.get();
  m_Membros[uiChaveNomeArquivo] = std::move(pQVFile);
  return S_OK;
}

HRESULT CQVGroupFileBase::DeletaArquivo() {
  std::lock_guard lock(m_mutex);
  for (auto& it : m_Membros) QV_CHECK_ARQ(it.second->DeletaArquivo(), {"uiChaveNomeArquivo", std::to_string(it.first)});
  return S_OK;
}

HRESULT CQVGroupFileBase::DesabilitaControleCriacaoArquivos() {
  std::lock_guard lock(m_mutex);
  m_bControleDesabilitado = true;
  QV_CHECK_ARQ(CQVFileBase::DesabilitaControleCriacaoArquivos());
  for (auto& it : m_Membros) QV_CHECK_ARQ(it.second->DesabilitaControleCriacaoArquivos());
  return S_OK;
}

HRESULT CQVGroupFileBase::LiberaGravacao() {
  std::lock_guard lock(m_mutex);
  HRESULT hrPrimeiro = S_OK;
  for (auto& it : m_Membros) {
    const HRESULT hr = it.second->LiberaGravacao();
    if (FAILED(hr)) {
      LogaFalha(__func__, __LINE__, "it.second->LiberaGravacao()", hr, {{"uiChaveNomeArquivo", std::to_string(it.first)}});
      if (SUCCEEDED(hrPrimeiro)) hrPrimeiro = hr;
    }
  }
  return hrPrimeiro;
}

std::vector<std::uint64_t> CQVGroupFileBase::GetChaves() {
  std::lock_guard lock(m_mutex);
  static_cast<void>(IncluiMembrosDoDiretorio(false));
  std::vector<std::uint64_t> chaves;
  for (const auto& it : m_Membros) chaves.push_back(it.first);
  return chaves;
}
