#include "core/qvdatabase/QVTextFile.h"

#include <cstring>

#include "df/qvlibex/QVCodigos.h"

namespace {

std::string Num(QVUInt v) { return std::to_string(v); }

void Anexa(std::string& buffer, const std::string& texto) {
  const auto n = static_cast<std::uint32_t>(texto.size());
  const char bytes[4] = {static_cast<char>(n), static_cast<char>(n >> 8), static_cast<char>(n >> 16),
                         static_cast<char>(n >> 24)};
  buffer.append(bytes, 4);
  buffer.append(texto);
}

}  // namespace

CQVTextFile::~CQVTextFile() {
  if (EstaInicializado()) QV_LOGA(Finaliza());
}

// A count and a pointer have no status: a failed reading again (logged)
// leaves what memory held.
QVUInt CQVTextFile::GetQtdRegistros() {
  std::lock_guard lock(m_mutex);
  static_cast<void>(SincronizaLeitura());
  return m_Entradas.size();
}

const std::vector<CQVTextFile::Entrada>* CQVTextFile::GetPtrRegistros() {
  std::lock_guard lock(m_mutex);
  if (!EstaInicializado()) return nullptr;
  static_cast<void>(SincronizaLeitura());
  return &m_Entradas;
}

QVUInt CQVTextFile::FimDosTextos() const {
  if (m_Entradas.empty()) return 0;
  const Entrada& e = m_Entradas.back();
  return e.uiOffset + 4 + e.sTexto.size();
}

HRESULT CQVTextFile::OnInicializa() {
  std::lock_guard lock(m_mutex);
  m_Entradas.clear();
  m_bArquivoExiste = false;
  QV_CHECK_ARQ(CQVFileBase::OnInicializa());
  QV_CHECK_ARQ(Carrega());
  return S_OK;
}

HRESULT CQVTextFile::LeConteudo(bool bExiste, QVUInt uiTamanho) {
  std::string dados(static_cast<std::size_t>(uiTamanho), '\0');
  if (uiTamanho > 0) QV_CHECK_ARQ(LeDados(0, dados.data(), dados.size()));
  std::vector<Entrada> entradas;
  for (QVUInt uiOffset = 0; uiOffset < uiTamanho;) {
    if (uiTamanho - uiOffset < 4)
      QV_RETURN_ARQ(E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA, {"uiOffset", Num(uiOffset)},
                    {"GetLength", Num(uiTamanho)});
    const auto* p = reinterpret_cast<const unsigned char*>(dados.data() + uiOffset);
    const QVUInt n = p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<QVUInt>(p[3]) << 24);
    if (uiTamanho - uiOffset - 4 < n)
      QV_RETURN_ARQ(E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA, {"uiOffset", Num(uiOffset)},
                    {"n", Num(n)}, {"GetLength", Num(uiTamanho)});
    entradas.push_back({uiOffset, dados.substr(static_cast<std::size_t>(uiOffset + 4), static_cast<std::size_t>(n))});
    uiOffset += 4 + n;
  }
  m_Entradas = std::move(entradas);
  m_bArquivoExiste = bExiste;
  return S_OK;
}

HRESULT CQVTextFile::OnFinaliza() {
  std::lock_guard lock(m_mutex);
  const HRESULT hr = CQVFileBase::OnFinaliza();
  m_Entradas.clear();
  return hr;
}

HRESULT CQVTextFile::Le(QVUInt uiPosicao, std::string* psTexto) {
  std::lock_guard lock(m_mutex);
  if (uiPosicao == 0) QV_RETURN_ARQ(E_QVCR_TENTATIVA_LER_POSICAO_ZERO);
  QV_CHECK_ARQ(SincronizaLeitura(), {"uiPosicao", Num(uiPosicao)});
  if (!m_bArquivoExiste) QV_RETURN_ARQ(E_QVCR_ARQUIVO_NAO_EXISTE, {"uiPosicao", Num(uiPosicao)});
  if (uiPosicao > m_Entradas.size())
    QV_RETURN_ARQ(E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO, {"uiPosicao", Num(uiPosicao)},
                  {"GetQtdRegistros()", Num(m_Entradas.size())});
  *psTexto = m_Entradas[uiPosicao - 1].sTexto;
  return S_OK;
}

HRESULT CQVTextFile::Grava(QVUInt& uiPosicao, const std::string& sTexto) {
  QV_CHECK_ARQ(GravaColecao(uiPosicao, std::vector<std::string>{sTexto}), {"uiPosicao", Num(uiPosicao)});
  return S_OK;
}

bool CQVTextFile::PrecisaGravar(QVUInt uiPosicao, const std::vector<std::string>& aRegistros) {
  if (uiPosicao == 0 || uiPosicao - 1 + aRegistros.size() > m_Entradas.size()) return true;
  for (std::size_t i = 0; i < aRegistros.size(); ++i)
    if (m_Entradas[uiPosicao - 1 + i].sTexto != aRegistros[i]) return true;
  return false;
}

bool CQVTextFile::DeveGravarNoFinal(QVUInt uiPosicao, const std::vector<std::string>& aRegistros) {
  if (uiPosicao == 0 || aRegistros.empty() || uiPosicao - 1 + aRegistros.size() > m_Entradas.size()) return false;
  for (std::size_t i = 0; i < aRegistros.size(); ++i)
    if (aRegistros[i].size() > m_Entradas[uiPosicao - 1 + i].sTexto.size()) return true;
  return false;
}

bool CQVTextFile::DeveExecutarShrink(QVUInt uiPosicao, const std::vector<std::string>& aRegistros) {
  if (uiPosicao == 0) return false;
  for (std::size_t i = 0; i < aRegistros.size() && uiPosicao - 1 + i < m_Entradas.size(); ++i)
    if (aRegistros[i].size() < m_Entradas[uiPosicao - 1 + i].sTexto.size()) return true;
  return false;
}

HRESULT CQVTextFile::GravaColecao(QVUInt& uiPosicao, const std::vector<std::string>& aRegistros) {
  std::lock_guard lock(m_mutex);
  QV_CHECK_ARQ(SincronizaLeitura(), {"uiPosicao", Num(uiPosicao)});
  // Decided before the open (a write that writes nothing creates no file)
  // and, when the open found the file changed by another process, again
  // against what it holds.
  for (bool bAberto = false;;) {
    if (uiPosicao > m_Entradas.size() + 1)
      QV_RETURN_ARQ(E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO, {"uiPosicao", Num(uiPosicao)},
                    {"aRegistros.size()", Num(aRegistros.size())}, {"GetQtdRegistros()", Num(m_Entradas.size())});
    if (aRegistros.empty() || !PrecisaGravar(uiPosicao, aRegistros)) return S_OK;
    if (bAberto) break;
    QV_CHECK_ARQ(AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao), {"uiPosicao", Num(uiPosicao)});
    QV_CHECK_ARQ(PodeGravar(), {"uiPosicao", Num(uiPosicao)});
    bool bRecarregado = false;
    QV_CHECK_ARQ(SincronizaGravacao(&bRecarregado), {"uiPosicao", Num(uiPosicao)});
    bAberto = true;
    if (!bRecarregado) break;
  }
  if (DeveGravarNoFinal(uiPosicao, aRegistros)) uiPosicao = 0;
  m_bArquivoExiste = true;
  QV_CHECK_ARQ(GravaRegistros(uiPosicao, aRegistros), {"uiPosicao", Num(uiPosicao)},
               {"aRegistros.size()", Num(aRegistros.size())});
  return S_OK;
}

HRESULT CQVTextFile::GravaRegistros(QVUInt& uiPosicao, const std::vector<std::string>& aRegistros) {
  if (DeveExecutarShrink(uiPosicao, aRegistros)) {
    QV_CHECK_ARQ(ExecutaShrink(uiPosicao, aRegistros), {"uiPosicao", Num(uiPosicao)},
                 {"aRegistros.size()", Num(aRegistros.size())});
    return S_OK;
  }
  const QVUInt uiPrimeira = uiPosicao == 0 ? m_Entradas.size() + 1 : uiPosicao;
  const QVUInt uiOffset = uiPrimeira <= m_Entradas.size() ? m_Entradas[uiPrimeira - 1].uiOffset : FimDosTextos();
  std::string buffer;
  for (const std::string& t : aRegistros) Anexa(buffer, t);
  HRESULT hr = GravaDados(uiOffset, buffer.data(), buffer.size());
  if (SUCCEEDED(hr)) hr = Flush();
  if (FAILED(hr)) {
    RestauraDoMemoria(uiOffset, hr);
    LogaFalha(__func__, __LINE__, "Flush()", hr,
              {{"uiPosicao", Num(uiPosicao)}, {"aRegistros.size()", Num(aRegistros.size())}});
    return hr;
  }
  if (uiPrimeira - 1 + aRegistros.size() > m_Entradas.size()) m_Entradas.resize(uiPrimeira - 1 + aRegistros.size());
  QVUInt o = uiOffset;
  for (std::size_t i = 0; i < aRegistros.size(); ++i) {
    m_Entradas[uiPrimeira - 1 + i] = {o, aRegistros[i]};
    o += 4 + aRegistros[i].size();
  }
  uiPosicao = uiPrimeira;
  return S_OK;
}

HRESULT CQVTextFile::EscreveDesde(QVUInt uiOffset) {
  std::string buffer;
  QVUInt o = uiOffset;
  for (Entrada& e : m_Entradas) {
    if (e.uiOffset < uiOffset) continue;
    e.uiOffset = o;
    Anexa(buffer, e.sTexto);
    o += 4 + e.sTexto.size();
  }
  HRESULT hr = buffer.empty() ? S_OK : GravaDados(uiOffset, buffer.data(), buffer.size());
  if (SUCCEEDED(hr)) hr = TruncaDados(o);
  if (SUCCEEDED(hr)) hr = Flush();
  return hr;
}

void CQVTextFile::RestauraDoMemoria(QVUInt uiOffset, HRESULT hrFalha) {
  const HRESULT hr = EscreveDesde(uiOffset);
  if (FAILED(hr)) {
    LogaFalha(__func__, __LINE__, "EscreveDesde(uiOffset)", hr,
              {{"hrFalha", std::to_string(static_cast<std::uint32_t>(hrFalha))}});
    MarcaDuvida(hrFalha);
  }
}

HRESULT CQVTextFile::ExecutaShrink(QVUInt uiPosicao, const std::vector<std::string>& aRegistros) {
  // The entries the compacted file will have; memory keeps the old ones
  // until the new file has taken the old one's place.
  std::vector<Entrada> novas = m_Entradas;
  if (uiPosicao - 1 + aRegistros.size() > novas.size()) novas.resize(uiPosicao - 1 + aRegistros.size());
  for (std::size_t i = 0; i < aRegistros.size(); ++i) novas[uiPosicao - 1 + i].sTexto = aRegistros[i];
  std::string dados;
  for (Entrada& e : novas) {
    e.uiOffset = dados.size();
    Anexa(dados, e.sTexto);
  }
  bool bSubstituido = false;
  const HRESULT hr = SubstituiDados(dados.data(), dados.size(), &bSubstituido);
  if (bSubstituido) m_Entradas = std::move(novas);
  if (FAILED(hr))
    LogaFalha(__func__, __LINE__, "SubstituiDados(dados.data(), dados.size(), &bSubstituido)", hr,
              {{"uiPosicao", Num(uiPosicao)}});
  return hr;
}
