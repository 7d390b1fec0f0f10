#include "core/qvdatabase/QVFileSingleReg.h"

#include <cstring>

#include "df/qvlibex/QVCodigos.h"

CQVFileSingleRegBase::CQVFileSingleRegBase(std::string sNomeArquivo, std::uint32_t eModulo, std::size_t tamRegistro,
                                           std::string sNomeEstrutura)
    : CQVFileBase(std::move(sNomeArquivo), eModulo),
      m_sNomeEstrutura(std::move(sNomeEstrutura)),
      m_Registro(tamRegistro, 0) {}

CQVFileSingleRegBase::~CQVFileSingleRegBase() {
  if (EstaInicializado()) QV_LOGA(Finaliza());
}

HRESULT CQVFileSingleRegBase::OnInicializa() {
  std::lock_guard lock(m_mutex);
  std::fill(m_Registro.begin(), m_Registro.end(), 0);
  m_bArquivoExiste = false;
  QV_CHECK_ARQ(CQVFileBase::OnInicializa());
  QV_CHECK_ARQ(Carrega());
  return S_OK;
}

// A file with no data (its header only: the process that created it died
// before writing the record) reads as an absent one, so that such a crash
// does not leave a file its next open refuses.
HRESULT CQVFileSingleRegBase::LeConteudo(bool bExiste, QVUInt uiTamanho) {
  std::vector<unsigned char> registro(m_Registro.size(), 0);
  if (bExiste && uiTamanho > 0) {
    if (uiTamanho != registro.size())
      QV_RETURN_ARQ(E_QVCR_ARQUIVO_SINGLE_REG_NAO_TEM_TAMANHO_ESTRUTURA, {"GetLength", std::to_string(uiTamanho)},
                    {"sizeof(T)", std::to_string(registro.size())});
    QV_CHECK_ARQ(LeDados(0, registro.data(), registro.size()));
  }
  m_Registro = std::move(registro);
  m_bArquivoExiste = bExiste && uiTamanho > 0;
  return S_OK;
}

// A count has no status: a failed reading again (logged) leaves what memory held.
QVUInt CQVFileSingleRegBase::GetQtdRegistros() {
  std::lock_guard lock(m_mutex);
  static_cast<void>(SincronizaLeitura());
  return m_bArquivoExiste ? 1 : 0;
}

HRESULT CQVFileSingleRegBase::LeRegistro(void* pRegistro) {
  std::lock_guard lock(m_mutex);
  QV_CHECK_ARQ(SincronizaLeitura());
  std::memcpy(pRegistro, m_Registro.data(), m_Registro.size());
  return S_OK;
}

HRESULT CQVFileSingleRegBase::GravaRegistro(const void* pRegistro) {
  std::lock_guard lock(m_mutex);
  QV_CHECK_ARQ(AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao));
  QV_CHECK_ARQ(PodeGravar());
  // The record a failed write goes back to is the one on disk now.
  QV_CHECK_ARQ(SincronizaGravacao());
  HRESULT hr = GravaDados(0, pRegistro, m_Registro.size());
  if (SUCCEEDED(hr)) hr = Flush();
  if (FAILED(hr)) {
    // Back to the record the callers were last told was written.
    HRESULT hrVolta = m_bArquivoExiste ? GravaDados(0, m_Registro.data(), m_Registro.size()) : TruncaDados(0);
    if (SUCCEEDED(hrVolta)) hrVolta = Flush();
    if (FAILED(hrVolta)) MarcaDuvida(hr);
    LogaFalha(__func__, __LINE__, "GravaDados(0, pRegistro, m_Registro.size())", hr);
    return hr;
  }
  std::memcpy(m_Registro.data(), pRegistro, m_Registro.size());
  m_bArquivoExiste = true;
  return S_OK;
}
