#include "ge/zelkorin/atendimento/CQVIndiceNumeros.h"

#include <algorithm>
#include <chrono>
#include <memory>

#include "core/qvdatabase/QVDataBaseTipos.h"
#include "core/qvdatabase/QVFileNameFormat.h"
#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/atendimento/CGeServidorAtendimentoDatabase.h"

namespace {

// Wider than any file system's granularity for a time of change: a state
// seen this long after its change cannot hide a later one.
constexpr std::int64_t kMargemRelogioNs = 2'000'000'000;

std::int64_t AgoraNs() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

}  // namespace

std::size_t CQVNumerosAtendimento::count(std::uint32_t lNumero) const {
  if (m_pIndice == nullptr) return 0;
  const auto it = m_pIndice->m_Contagem.find(lNumero);
  std::size_t n = it == m_pIndice->m_Contagem.end() ? 0 : it->second;
  if (m_bExcluido && lNumero == m_lExcluido && n > 0) --n;
  return n;
}

CQVIndiceNumeros& CQVIndiceNumeros::Da(const std::string& sDiretorio) {
  // One per folder for the life of the process (a company's numbers are
  // worth keeping while the process serves it).
  static std::mutex s_mutex;
  static std::map<std::string, std::unique_ptr<CQVIndiceNumeros>> s_Indices;
  std::lock_guard trava(s_mutex);
  std::unique_ptr<CQVIndiceNumeros>& p = s_Indices[sDiretorio];
  if (!p) p.reset(new CQVIndiceNumeros(sDiretorio));
  return *p;
}

std::uint64_t CQVIndiceNumeros::GetQtdLeiturasMes() {
  std::lock_guard trava(m_mutex);
  return m_uiLeiturasMes;
}

void CQVIndiceNumeros::Conta(std::uint32_t lNumero, int iSinal) {
  if (iSinal > 0) {
    ++m_Contagem[lNumero];
    return;
  }
  const auto it = m_Contagem.find(lNumero);
  if (it != m_Contagem.end() && --it->second == 0) m_Contagem.erase(it);
}

void CQVIndiceNumeros::Conta(const std::vector<std::uint32_t>& numeros, int iSinal) {
  for (const std::uint32_t lNumero : numeros) Conta(lNumero, iSinal);
}

void CQVIndiceNumeros::Esquece(std::uint16_t iMA) {
  const auto it = m_Meses.find(iMA);
  if (it == m_Meses.end()) return;
  Conta(it->second.numeros, -1);
  m_Meses.erase(it);
}

HRESULT CQVIndiceNumeros::Consulta(const IQVDF_Profiler* pPerfil, CGeServidorAtendimentoDatabase* pGEAtendimentoDB,
                                   std::uint16_t iMA, std::uint32_t lPosicao, CQVNumerosAtendimento* pNumeros) {
  std::unique_lock trava(m_mutex);
  QV_CHECK(Atualiza(pPerfil, pGEAtendimentoDB));
  pNumeros->m_bExcluido = false;
  if (lPosicao != 0) {
    const auto it = m_Meses.find(iMA);
    if (it != m_Meses.end() && lPosicao <= it->second.numeros.size()) {
      pNumeros->m_bExcluido = true;
      pNumeros->m_lExcluido = it->second.numeros[lPosicao - 1];
    }
  }
  pNumeros->m_pIndice = this;
  pNumeros->m_trava = std::move(trava);
  return S_OK;
}

HRESULT CQVIndiceNumeros::MesesDaPasta(CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  // Taken before the stat: a change during the listing leaves a newer time
  // than the one recorded, and the next query lists again.
  const std::int64_t iAgoraNs = AgoraNs();
  std::int64_t iMudouNs = 0;
  QV_CHECK(QVGetDirectoryChangeTime(m_sDiretorio, &iMudouNs));
  if (iMudouNs == m_iPastaMudouNs && m_iListadaEmNs - iMudouNs > kMargemRelogioNs) return S_OK;
  std::vector<std::uint16_t> meses;
  QV_CHECK(pGEAtendimentoDB->GetMesesAtendimento(&meses));
  m_MesesPasta = std::move(meses);
  m_iPastaMudouNs = iMudouNs;
  m_iListadaEmNs = iAgoraNs;
  return S_OK;
}

HRESULT CQVIndiceNumeros::Identidade(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, std::uint16_t iMA,
                                     QVFileIdentity* pIdentidade, bool* pbConfiavel) const {
  const std::int64_t iAgoraNs = AgoraNs();
  const std::string sCaminho =
      m_sDiretorio + "/" + CQVFileNameFormatMa<10>::Nome(pGEAtendimentoDB->m_ArqAtendimento.GetRaiz(), iMA);
  QV_CHECK(QVGetFileIdentity(sCaminho, pIdentidade));
  *pbConfiavel = iAgoraNs - pIdentidade->iModifiedNs > kMargemRelogioNs;
  return S_OK;
}

// Counters tell every write only with headers kept, and updated at every
// flush (not deferred to the close); a file with a header that was ever
// written has counted at least one update.
static bool Retido(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, std::uint16_t iMA) {
  auto& arquivo = pGEAtendimentoDB->m_ArqAtendimento;
  return pGEAtendimentoDB->GetMa().iMA == iMA && arquivo.GetPeriodo() == iMA &&
         !pGEAtendimentoDB->GetAtualizacaoCabecalhoAdiada() && arquivo.GerenciarCabecalho() &&
         (arquivo.GetContadorRetrato() != 0 || arquivo.GetVoltasRetrato() != 0);
}

void CQVIndiceNumeros::MarcaRetido(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, std::uint16_t iMA, Mes& mes) {
  auto& arquivo = pGEAtendimentoDB->m_ArqAtendimento;
  mes.bRetido = Retido(pGEAtendimentoDB, iMA);
  mes.uiContador = mes.bRetido ? arquivo.GetContadorRetrato() : 0;
  mes.usVoltas = mes.bRetido ? arquivo.GetVoltasRetrato() : 0;
}

bool CQVIndiceNumeros::RetidoSemMudanca(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, std::uint16_t iMA,
                                        const Mes& mes) {
  if (!mes.bRetido || !Retido(pGEAtendimentoDB, iMA)) return false;
  auto& arquivo = pGEAtendimentoDB->m_ArqAtendimento;
  if (arquivo.GetContadorRetrato() != mes.uiContador || arquivo.GetVoltasRetrato() != mes.usVoltas ||
      arquivo.GetQtdRegistros() != mes.numeros.size())
    return false;
  // Free while the database holds the file; else one look at the disk. A
  // failure to look (logged) reads the month again.
  bool bAtual = false;
  return SUCCEEDED(QV_LOGA(arquivo.ConfereDisco(&bAtual))) && bAtual;
}

HRESULT CQVIndiceNumeros::LeMes(const IQVDF_Profiler* pPerfil, CGeServidorAtendimentoDatabase* pGEAtendimentoDB,
                                std::uint16_t iMA, Mes* pMes) {
  // The state first: a change while the numbers are read shows at the
  // next query as a state that moved, and the month is read again.
  QV_CHECK(Identidade(pGEAtendimentoDB, iMA, &pMes->identidade, &pMes->bConfiavel));
  ++m_uiLeiturasMes;
  pMes->numeros.clear();
  REG_ATENDIMENTO_V2 reg;
  if (pGEAtendimentoDB->GetMa().iMA == iMA) {
    auto& arquivo = pGEAtendimentoDB->m_ArqAtendimento;
    const QVUInt n = arquivo.GetQtdRegistros();
    pMes->numeros.reserve(static_cast<std::size_t>(n));
    for (QVUInt p = 1; p <= n; ++p) {
      QV_CHECK(arquivo.Le(p, &reg));
      pMes->numeros.push_back(static_cast<std::uint32_t>(reg.lNumeroAtendimento));  // packed: a copy
    }
    MarcaRetido(pGEAtendimentoDB, iMA, *pMes);
    return S_OK;
  }
  CQVDataBase qvDB(QV_GE);
  qvDB.SetSomenteLeitura(true);
  // One reading: the file looks at the disk once, not at every record.
  qvDB.NovaEpocaLeitura();
  qvDB.SetDiretorio(pGEAtendimentoDB->GetDiretorio());
  QV_CHECK(qvDB.Inicializa(pPerfil));
  CGeServidorAtendimentoDatabase::ArquivoMensal<REG_ATENDIMENTO_V2> arqMes(pGEAtendimentoDB->m_ArqAtendimento.GetRaiz(),
                                                                           QV_GE);
  QV_CHECK(arqMes.SelecionaPeriodo(iMA));
  QV_CHECK(arqMes.Inicializa(&qvDB));
  const QVUInt n = arqMes.GetQtdRegistros();
  pMes->numeros.reserve(static_cast<std::size_t>(n));
  for (QVUInt p = 1; p <= n; ++p) {
    QV_CHECK(arqMes.Le(p, &reg));
    pMes->numeros.push_back(static_cast<std::uint32_t>(reg.lNumeroAtendimento));  // packed: a copy
  }
  return S_OK;
}

HRESULT CQVIndiceNumeros::Atualiza(const IQVDF_Profiler* pPerfil, CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  QV_CHECK(MesesDaPasta(pGEAtendimentoDB));
  // Months whose file went.
  for (auto it = m_Meses.begin(); it != m_Meses.end();) {
    const std::uint16_t iMA = (it++)->first;
    if (!std::binary_search(m_MesesPasta.begin(), m_MesesPasta.end(), iMA)) Esquece(iMA);
  }
  for (const std::uint16_t iMA : m_MesesPasta) {
    auto it = m_Meses.find(iMA);
    if (it != m_Meses.end()) {
      if (RetidoSemMudanca(pGEAtendimentoDB, iMA, it->second)) continue;
      if (!(it->second.bRetido && Retido(pGEAtendimentoDB, iMA)) && it->second.bConfiavel) {
        // Not held, or held with other counters (changed): its state.
        QVFileIdentity identidade;
        bool bConfiavel = false;
        QV_CHECK(Identidade(pGEAtendimentoDB, iMA, &identidade, &bConfiavel));
        if (identidade == it->second.identidade) continue;
      }
    }
    Mes mes;
    QV_CHECK(LeMes(pPerfil, pGEAtendimentoDB, iMA, &mes));
    Esquece(iMA);
    Conta(mes.numeros, +1);
    m_Meses[iMA] = std::move(mes);
  }
  return S_OK;
}

void CQVIndiceNumeros::RegistraGravacao(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, std::uint16_t iMA,
                                        std::uint32_t lPosicao, std::uint32_t lNumero) {
  std::lock_guard trava(m_mutex);
  const auto it = m_Meses.find(iMA);
  if (it == m_Meses.end()) {
    // A month never read (or a call file just made): it is read, whole, at
    // the next query.
    return;
  }
  Mes& mes = it->second;
  if (lPosicao == 0 || lPosicao > mes.numeros.size() + 1 ||
      FAILED(QV_LOGA(Identidade(pGEAtendimentoDB, iMA, &mes.identidade, &mes.bConfiavel)))) {
    Esquece(iMA);
    return;
  }
  if (lPosicao == mes.numeros.size() + 1) {
    mes.numeros.push_back(lNumero);
  } else {
    Conta(mes.numeros[lPosicao - 1], -1);
    mes.numeros[lPosicao - 1] = lNumero;
  }
  Conta(lNumero, +1);
  MarcaRetido(pGEAtendimentoDB, iMA, mes);
}

void CGeServidorAtendimento::RegistraNumeroGravado(std::uint16_t iMA, std::uint32_t lPosicao,
                                                   std::uint32_t lNumeroAtendimento,
                                                   CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::string sDiretorio;
  // Without the folder the index cannot be found; its next query sees the
  // file changed and reads the month again.
  if (FAILED(QV_LOGA(pGEAtendimentoDB->GetDiretorioDados(&sDiretorio)))) return;
  CQVIndiceNumeros::Da(sDiretorio).RegistraGravacao(pGEAtendimentoDB, iMA, lPosicao, lNumeroAtendimento);
}
