#include "core/qvdatabase/QVFileRegistros.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "df/qvlibex/QVCodigos.h"

namespace {

// Loads read the data in pieces the platform's single read can take.
constexpr std::size_t kMaxLeitura = 0xFFFFFFFFu;

std::string Num(QVUInt v) { return std::to_string(v); }

// The room a load leaves: an eighth more records, at least 16.
QVUInt CapacidadeDeCarga(QVUInt uiQtd) { return uiQtd + std::max<QVUInt>(uiQtd / 8, 16); }

}  // namespace

CQVFileRegistros::CQVFileRegistros(std::string sNomeArquivo, std::uint32_t eModulo, std::size_t tamRegistro,
                                   std::string sNomeEstrutura, std::vector<DescritorIndice> indices)
    : CQVFileBase(std::move(sNomeArquivo), eModulo),
      m_tamRegistro(tamRegistro),
      m_sNomeEstrutura(std::move(sNomeEstrutura)),
      m_Descritores(std::move(indices)),
      m_Indices(m_Descritores.size()) {}

CQVFileRegistros::~CQVFileRegistros() {
  if (EstaInicializado()) QV_LOGA(Finaliza());
}

void CQVFileRegistros::Guarda(CQVBloco bloco) {
  if (bloco.size() > m_pReserva.size()) m_pReserva = std::move(bloco);
}

HRESULT CQVFileRegistros::Reserva(QVUInt uiCapacidade) {
  if (uiCapacidade <= m_uiCapacidade) return S_OK;
  // Appends grow the block geometrically so that a run of single appends
  // costs amortised constant time.
  const QVUInt uiNova = std::max<QVUInt>(uiCapacidade, m_uiCapacidade + m_uiCapacidade / 2 + 16);
  if (!m_pDados.Cresce(static_cast<std::size_t>(uiNova * m_tamRegistro))) return E_OUTOFMEMORY;
  m_uiCapacidade = uiNova;
  return S_OK;
}

HRESULT CQVFileRegistros::Redimensiona(QVUInt uiQtd) {
  if (const HRESULT hr = Reserva(uiQtd); FAILED(hr)) return hr;
  m_uiQtd = uiQtd;
  return S_OK;
}

HRESULT CQVFileRegistros::OnInicializa() {
  std::lock_guard lock(m_mutex);
  m_uiQtd = 0;
  m_uiCapacidade = 0;
  Guarda(std::move(m_pDados));
  m_bIndicesProntos = false;
  m_bAlteradoEmMemoria = false;
  m_bArquivoExiste = false;
  for (Indice& i : m_Indices) i.clear();
  QV_CHECK_ARQ(CQVFileBase::OnInicializa());
  QV_CHECK_ARQ(Carrega());
  return S_OK;
}

HRESULT CQVFileRegistros::LeConteudo(bool bExiste, QVUInt uiTamanho) {
  if (uiTamanho % m_tamRegistro != 0) {
    QVEscreveLinhaErroTexto(QVSinkAtual(), NomeClasseLog() + "::LeConteudo", FonteLog(), __LINE__,
                            QVFormataFalhaArquivoTamanho(E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA, m_sNomeArquivo, 0, 0,
                                                         static_cast<std::int64_t>(uiTamanho)));
    QV_RETURN_ARQ(E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA, {"sizeof(T)", Num(m_tamRegistro)});
  }
  const QVUInt uiQtd = uiTamanho / m_tamRegistro;
  QVUInt uiCapacidade = CapacidadeDeCarga(uiQtd);
  // The block the file held before it was finalised, when it is big
  // enough: moving from month to month reuses one block instead of asking
  // the system for fresh pages (which it zeroes) at every load.
  CQVBloco novo;
  if (m_pReserva.size() >= static_cast<std::size_t>(uiCapacidade * m_tamRegistro)) {
    novo = std::move(m_pReserva);
    uiCapacidade = static_cast<QVUInt>(novo.size() / m_tamRegistro);
  } else {
    novo = CQVBloco(static_cast<std::size_t>(uiCapacidade * m_tamRegistro));
  }
  if (!novo) QV_RETURN_ARQ(E_OUTOFMEMORY, {"GetLength", Num(uiTamanho)});
  for (QVUInt uiLido = 0; uiLido < uiTamanho;) {
    const auto n = static_cast<std::size_t>(std::min<QVUInt>(uiTamanho - uiLido, kMaxLeitura));
    QV_CHECK_ARQ(LeDados(uiLido, novo.get() + uiLido, n), {"GetLength", Num(uiTamanho)});
    uiLido += n;
  }
  m_pDados = std::move(novo);
  m_uiQtd = uiQtd;
  m_uiCapacidade = uiCapacidade;
  m_bArquivoExiste = bExiste;
  for (Indice& i : m_Indices) i.clear();
  m_bIndicesProntos = false;
  return S_OK;
}

HRESULT CQVFileRegistros::SincronizaParaLer() {
  if (m_bAlteradoEmMemoria) return S_OK;
  QV_CHECK_ARQ(SincronizaLeitura());
  return S_OK;
}

HRESULT CQVFileRegistros::OnFinaliza() {
  std::lock_guard lock(m_mutex);
  const HRESULT hr = CQVFileBase::OnFinaliza();
  m_uiQtd = 0;
  m_uiCapacidade = 0;
  Guarda(std::move(m_pDados));
  for (Indice& i : m_Indices) i.clear();
  m_bIndicesProntos = false;
  return hr;
}

// A count and a pointer have no status: a failed reading again (logged)
// leaves what memory held.
QVUInt CQVFileRegistros::GetQtdRegistros() {
  std::lock_guard lock(m_mutex);
  static_cast<void>(SincronizaParaLer());
  return m_uiQtd;
}

const void* CQVFileRegistros::GetPonteiroRegistro(QVUInt uiPosicao) {
  std::lock_guard lock(m_mutex);
  static_cast<void>(SincronizaParaLer());
  return uiPosicao >= 1 && uiPosicao <= m_uiQtd ? Registro(uiPosicao) : nullptr;
}

HRESULT CQVFileRegistros::LeRegistro(QVUInt uiPosicao, void* pRegistro) {
  std::lock_guard lock(m_mutex);
  if (uiPosicao == 0) QV_RETURN_ARQ(E_QVCR_TENTATIVA_LER_POSICAO_ZERO);
  QV_CHECK_ARQ(SincronizaParaLer(), {"uiPosicao", Num(uiPosicao)});
  if (!m_bArquivoExiste) QV_RETURN_ARQ(E_QVCR_ARQUIVO_NAO_EXISTE, {"uiPosicao", Num(uiPosicao)});
  if (uiPosicao > m_uiQtd) {
    QVEscreveLinhaErroTexto(QVSinkAtual(), NomeClasseLog() + "::Le", FonteLog(), __LINE__,
                            QVFormataFalhaArquivo(E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO, m_sNomeArquivo,
                                                  static_cast<std::int64_t>(uiPosicao),
                                                  static_cast<std::int64_t>(uiPosicao),
                                                  static_cast<std::int64_t>(m_uiQtd)));
    return E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO;
  }
  std::memcpy(pRegistro, Registro(uiPosicao), m_tamRegistro);
  return S_OK;
}

// ---- indexes ------------------------------------------------------------------

void CQVFileRegistros::IncluiIndex(QVUInt idx, std::uint64_t uiChave, QVUInt uiPosicao) {
  if (uiChave != 0) m_Indices[idx][uiChave].push_back(uiPosicao);
}

void CQVFileRegistros::ConstroiIndices() {
  if (m_bIndicesProntos) return;
  for (QVUInt idx = 0; idx < m_Descritores.size(); ++idx) {
    m_Indices[idx].clear();
    for (QVUInt p = 1; p <= m_uiQtd; ++p) IncluiIndex(idx, m_Descritores[idx].chave(Registro(p), idx), p);
  }
  m_bIndicesProntos = true;
}

HRESULT CQVFileRegistros::ValidaIndex(QVUInt uiPosicao, const unsigned char* pRegistros, std::size_t n, QVUInt idx) {
  const DescritorIndice& d = m_Descritores[idx];
  const Indice& indice = m_Indices[idx];
  std::set<std::uint64_t> listaSetIndexOrdernar;  // the keys of the run itself
  for (std::size_t i = 0; i < n; ++i) {
    const std::uint64_t uiChave = d.chave(pRegistros + i * m_tamRegistro, idx);
    if (uiChave == 0) {
      if (!d.bPermiteChaveZero)
        QV_RETURN_ARQ(E_QVCR_INDEXACAO_COM_POSICAO_ZERO, {"idx", Num(idx)}, {"i", Num(i)});
      continue;
    }
    if (d.bPermiteChaveRepetida) continue;
    if (!listaSetIndexOrdernar.insert(uiChave).second)
      QV_RETURN_ARQ(E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA, {"idx", Num(idx)}, {"uiChave", Num(uiChave)});
    const auto it = indice.find(uiChave);
    if (it == indice.end()) continue;
    // A rewritten record may keep its own key, and only its own.
    for (QVUInt q : it->second)
      if (uiPosicao == 0 || q != uiPosicao + i)
        QV_RETURN_ARQ(E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA, {"idx", Num(idx)}, {"uiChave", Num(uiChave)},
                      {"uiPosicaoExistente", Num(q)});
  }
  return S_OK;
}

void CQVFileRegistros::RemoveIndex(QVUInt uiPosicao, std::size_t n) {
  const QVUInt uiFim = std::min<QVUInt>(uiPosicao + n - 1, m_uiQtd);
  for (QVUInt idx = 0; idx < m_Descritores.size(); ++idx) {
    for (QVUInt p = uiPosicao; p <= uiFim; ++p) {
      const std::uint64_t uiChave = m_Descritores[idx].chave(Registro(p), idx);
      const auto it = m_Indices[idx].find(uiChave);
      if (it == m_Indices[idx].end()) continue;
      std::erase(it->second, p);
      if (it->second.empty()) m_Indices[idx].erase(it);
    }
  }
}

void CQVFileRegistros::AtualizaIndex(QVUInt uiPosicao, const unsigned char* pRegistros, std::size_t n) {
  for (QVUInt idx = 0; idx < m_Descritores.size(); ++idx)
    for (std::size_t i = 0; i < n; ++i)
      IncluiIndex(idx, m_Descritores[idx].chave(pRegistros + i * m_tamRegistro, idx), uiPosicao + i);
}

HRESULT CQVFileRegistros::ProcuraIndex(QVUInt uiColunaIndexacao, std::uint64_t uiChave,
                                       const std::vector<QVUInt>** ppPosicoes) {
  *ppPosicoes = nullptr;
  if (uiColunaIndexacao >= m_Descritores.size())
    QV_RETURN_ARQ(E_QVCR_COLUNA_INDEXACAO_INVALIDA, {"uiColunaIndexacao", Num(uiColunaIndexacao)});
  ConstroiIndices();
  const Indice& indice = m_Indices[uiColunaIndexacao];
  const auto it = indice.find(uiChave);
  if (it == indice.end()) return S_OK;
  // A key with no position would be a broken index: answered as such, on purpose.
  if (it->second.empty())
    QV_RETURN_ARQ(E_QVCR_COLUNA_INDEXACAO_INVALIDA, {"uiColunaIndexacao", Num(uiColunaIndexacao)},
                  {"uiChave", Num(uiChave)});
  *ppPosicoes = &it->second;
  return S_OK;
}

HRESULT CQVFileRegistros::ExisteIndex(QVUInt uiColunaIndexacao, std::uint64_t uiChave, bool* pbExiste,
                                      std::vector<QVUInt>* plistaPosicao) {
  std::lock_guard lock(m_mutex);
  const std::vector<QVUInt>* pPosicoes = nullptr;
  HRESULT hr = SincronizaParaLer();
  if (SUCCEEDED(hr)) hr = ProcuraIndex(uiColunaIndexacao, uiChave, &pPosicoes);
  *pbExiste = pPosicoes != nullptr;
  if (plistaPosicao != nullptr) {
    if (pPosicoes != nullptr)
      *plistaPosicao = *pPosicoes;
    else
      plistaPosicao->clear();
  }
  return hr;
}

HRESULT CQVFileRegistros::ExisteIndex(QVUInt uiColunaIndexacao, std::uint64_t uiChave, bool* pbExiste) {
  return ExisteIndex(uiColunaIndexacao, uiChave, pbExiste, static_cast<std::vector<QVUInt>*>(nullptr));
}

HRESULT CQVFileRegistros::ExisteIndex(QVUInt uiColunaIndexacao, std::uint64_t uiChave, bool* pbExiste,
                                      QVUInt* puiPosicaoIndex) {
  std::lock_guard lock(m_mutex);
  const std::vector<QVUInt>* pPosicoes = nullptr;
  HRESULT hr = SincronizaParaLer();
  if (SUCCEEDED(hr)) hr = ProcuraIndex(uiColunaIndexacao, uiChave, &pPosicoes);
  *pbExiste = pPosicoes != nullptr;
  *puiPosicaoIndex = pPosicoes != nullptr ? pPosicoes->front() : 0;
  return hr;
}

// ---- writing --------------------------------------------------------------------

void CQVFileRegistros::RestauraDoMemoria(QVUInt uiOffset, HRESULT hrFalha) {
  const QVUInt uiTamanho = m_uiQtd * m_tamRegistro;
  HRESULT hr = S_OK;
  if (uiOffset < uiTamanho)
    hr = GravaDados(uiOffset, m_pDados.get() + uiOffset, static_cast<std::size_t>(uiTamanho - uiOffset));
  if (SUCCEEDED(hr)) hr = TruncaDados(uiTamanho);
  if (SUCCEEDED(hr)) hr = Flush();
  if (FAILED(hr)) {
    LogaFalha(__func__, __LINE__, "RestauraDoMemoria(uiOffset, hrFalha)", hr,
              {{"hrFalha", std::to_string(static_cast<std::uint32_t>(hrFalha))}});
    MarcaDuvida(hrFalha);
  }
}

HRESULT CQVFileRegistros::GravaRegistros(QVUInt& uiPosicao, const void* pRegistros, std::size_t n) {
  std::lock_guard lock(m_mutex);
  if (n == 0) return S_OK;
  const auto* novos = static_cast<const unsigned char*>(pRegistros);
  QV_CHECK_ARQ(SincronizaParaLer(), {"uiPosicao", Num(uiPosicao)});
  // The position is checked before the open (a refused write creates no
  // file) and, when the open found the file changed by another process,
  // again against what it holds.
  for (bool bAberto = false;;) {
    if (uiPosicao > m_uiQtd + 1)
      QV_RETURN_ARQ(E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO, {"uiPosicao", Num(uiPosicao)},
                    {"aRegistros.size()", Num(n)}, {"GetQtdRegistros()", Num(m_uiQtd)});
    if (bAberto) break;
    QV_CHECK_ARQ(AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao), {"uiPosicao", Num(uiPosicao)});
    QV_CHECK_ARQ(PodeGravar(), {"uiPosicao", Num(uiPosicao)});
    bool bRecarregado = false;
    if (!m_bAlteradoEmMemoria) QV_CHECK_ARQ(SincronizaGravacao(&bRecarregado), {"uiPosicao", Num(uiPosicao)});
    bAberto = true;
    if (!bRecarregado) break;
  }
  m_bArquivoExiste = true;
  ConstroiIndices();
  for (QVUInt idx = 0; idx < m_Descritores.size(); ++idx)
    QV_CHECK_ARQ(ValidaIndex(uiPosicao, novos, n, idx), {"uiPosicao", Num(uiPosicao)}, {"aRegistros.size()", Num(n)});

  const QVUInt uiPrimeira = uiPosicao == 0 ? m_uiQtd + 1 : uiPosicao;
  const QVUInt uiOffset = (uiPrimeira - 1) * m_tamRegistro;
  // Room in memory first: once the disk has the records, memory must be
  // able to take them. The new records may come from this file's own
  // memory, which the room-making may move: copy them first.
  std::vector<unsigned char> copia;
  if (novos >= m_pDados.get() && novos < m_pDados.get() + m_uiCapacidade * m_tamRegistro) {
    copia.assign(novos, novos + n * m_tamRegistro);
    novos = copia.data();
  }
  QV_CHECK_ARQ(Reserva(uiPrimeira + n - 1), {"uiPosicao", Num(uiPosicao)}, {"aRegistros.size()", Num(n)});
  HRESULT hr = GravaDados(uiOffset, novos, n * m_tamRegistro);
  if (SUCCEEDED(hr)) hr = Flush();
  if (FAILED(hr)) {
    RestauraDoMemoria(uiOffset, hr);
    LogaFalha(__func__, __LINE__, "Flush()", hr, {{"uiPosicao", Num(uiPosicao)}, {"aRegistros.size()", Num(n)}});
    return hr;
  }

  RemoveIndex(uiPrimeira, n);
  m_uiQtd = std::max<QVUInt>(m_uiQtd, uiPrimeira + n - 1);
  std::memmove(Registro(uiPrimeira), novos, n * m_tamRegistro);
  AtualizaIndex(uiPrimeira, novos, n);
  uiPosicao = uiPrimeira;
  return S_OK;
}

// ---- whole content ---------------------------------------------------------------

bool CQVFileRegistros::PrecisaGravar() const { return m_bAlteradoEmMemoria; }

HRESULT CQVFileRegistros::SetArrayData(const void* pRegistros, std::size_t n) {
  std::lock_guard lock(m_mutex);
  std::vector<unsigned char> copia(static_cast<const unsigned char*>(pRegistros),
                                   static_cast<const unsigned char*>(pRegistros) + n * m_tamRegistro);
  const QVUInt uiQtdAntiga = m_uiQtd;
  m_uiQtd = 0;
  if (const HRESULT hr = Redimensiona(n); FAILED(hr)) {
    m_uiQtd = uiQtdAntiga;
    QV_RETURN_ARQ(hr, {"aRegistros.size()", Num(n)});
  }
  if (n > 0) std::memcpy(m_pDados.get(), copia.data(), copia.size());
  m_bIndicesProntos = false;
  m_bAlteradoEmMemoria = true;
  return S_OK;
}

HRESULT CQVFileRegistros::SetRegData(QVUInt uiPosicao, const void* pRegistro) {
  std::lock_guard lock(m_mutex);
  if (uiPosicao == 0) QV_RETURN_ARQ(E_QVCR_TENTATIVA_LER_POSICAO_ZERO);
  QV_CHECK_ARQ(SincronizaParaLer(), {"uiPosicao", Num(uiPosicao)});
  if (uiPosicao > m_uiQtd + 1)
    QV_RETURN_ARQ(E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO, {"uiPosicao", Num(uiPosicao)});
  if (uiPosicao > m_uiQtd) QV_CHECK_ARQ(Redimensiona(uiPosicao));
  std::memmove(Registro(uiPosicao), pRegistro, m_tamRegistro);
  m_bIndicesProntos = false;
  m_bAlteradoEmMemoria = true;
  return S_OK;
}

HRESULT CQVFileRegistros::SetConteudo(const void* pRegistros, std::size_t n) {
  std::lock_guard lock(m_mutex);
  // The new content in a block of its own, first: it may come from this
  // file's memory, which a reading again replaces; and the old content stays
  // until the new one is the file's.
  const QVUInt uiCapacidade = CapacidadeDeCarga(n);
  CQVBloco novo(static_cast<std::size_t>(uiCapacidade * m_tamRegistro));
  if (!novo) QV_RETURN_ARQ(E_OUTOFMEMORY, {"aRegistros.size()", Num(n)});
  if (n > 0) std::memcpy(novo.get(), pRegistros, n * m_tamRegistro);
  QV_CHECK_ARQ(SincronizaParaLer(), {"aRegistros.size()", Num(n)});
  const bool bIgual = n == m_uiQtd && (n == 0 || std::memcmp(novo.get(), m_pDados.get(), n * m_tamRegistro) == 0);
  if (bIgual && !m_bAlteradoEmMemoria) return S_OK;
  QV_CHECK_ARQ(AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao), {"aRegistros.size()", Num(n)});
  QV_CHECK_ARQ(PodeGravar());

  bool bSubstituido = false;
  const HRESULT hr = SubstituiDados(novo.get(), n * m_tamRegistro, &bSubstituido);
  if (bSubstituido) {
    m_pDados = std::move(novo);
    m_uiQtd = n;
    m_uiCapacidade = uiCapacidade;
    m_bArquivoExiste = true;
    m_bIndicesProntos = false;
    m_bAlteradoEmMemoria = false;
  }
  if (FAILED(hr))
    LogaFalha(__func__, __LINE__, "SubstituiDados(novo.get(), n * m_tamRegistro, &bSubstituido)", hr,
              {{"aRegistros.size()", Num(n)}});
  return hr;
}
