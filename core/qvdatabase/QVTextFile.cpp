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

QVUInt CQVTextFile::GetQtdRegistros() {
  std::lock_guard lock(m_mutex);
  return m_Entradas.size();
}

QVUInt CQVTextFile::FimDosTextos() const {
  if (m_Entradas.empty()) return 0;
  const Entrada& e = m_Entradas.back();
  return e.uiOffset + 4 + e.sTexto.size();
}

HRESULT CQVTextFile::OnInicializa() {
  std::lock_guard lock(m_mutex);
  m_Entradas.clear();
  QV_CHECK_ARQ(CQVFileBase::OnInicializa());
  QVUInt uiTamanho = 0;
  QV_CHECK_ARQ(AbreParaCarga(&m_bArquivoExiste, &uiTamanho));
  std::string dados(static_cast<std::size_t>(uiTamanho), '\0');
  if (uiTamanho > 0) QV_CHECK_ARQ(LeDados(0, dados.data(), dados.size()));
  for (QVUInt uiOffset = 0; uiOffset < uiTamanho;) {
    if (uiTamanho - uiOffset < 4) {
      m_Entradas.clear();
      QV_RETURN_ARQ(E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA, {"uiOffset", Num(uiOffset)},
                    {"GetLength", Num(uiTamanho)});
    }
    const auto* p = reinterpret_cast<const unsigned char*>(dados.data() + uiOffset);
    const QVUInt n = p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<QVUInt>(p[3]) << 24);
    if (uiTamanho - uiOffset - 4 < n) {
      m_Entradas.clear();
      QV_RETURN_ARQ(E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA, {"uiOffset", Num(uiOffset)},
                    {"n", Num(n)}, {"GetLength", Num(uiTamanho)});
    }
    m_Entradas.push_back({uiOffset, dados.substr(static_cast<std::size_t>(uiOffset + 4), static_cast<std::size_t>(n))});
    uiOffset += 4 + n;
  }
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
  if (uiPosicao > m_Entradas.size() + 1)
    QV_RETURN_ARQ(E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO, {"uiPosicao", Num(uiPosicao)},
                  {"aRegistros.size()", Num(aRegistros.size())}, {"GetQtdRegistros()", Num(m_Entradas.size())});
  if (aRegistros.empty() || !PrecisaGravar(uiPosicao, aRegistros)) return S_OK;
  if (DeveGravarNoFinal(uiPosicao, aRegistros)) uiPosicao = 0;
  QV_CHECK_ARQ(AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao), {"uiPosicao", Num(uiPosicao)});
  QV_CHECK_ARQ(PodeGravar(), {"uiPosicao", Num(uiPosicao)});
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
  // The old entries stay at hand until the compacted file is on disk.
  std::vector<Entrada> antigas = m_Entradas;
  if (uiPosicao - 1 + aRegistros.size() > m_Entradas.size()) m_Entradas.resize(uiPosicao - 1 + aRegistros.size());
  for (std::size_t i = 0; i < aRegistros.size(); ++i) m_Entradas[uiPosicao - 1 + i].sTexto = aRegistros[i];
  HRESULT hr = TruncaDados(0);
  if (SUCCEEDED(hr)) hr = EscreveDesde(0);
  if (FAILED(hr)) {
    m_Entradas = std::move(antigas);
    RestauraDoMemoria(0, hr);
    LogaFalha(__func__, __LINE__, "EscreveDesde(0)", hr, {{"uiPosicao", Num(uiPosicao)}});
    return hr;
  }
  return S_OK;
}
