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
  std::fill(m_Registro.begin(), m_Registro.end(), 0);
  QV_CHECK_ARQ(CQVFileBase::OnInicializa());
  QVUInt uiTamanho = 0;
  QV_CHECK_ARQ(AbreParaCarga(&m_bArquivoExiste, &uiTamanho));
  if (!m_bArquivoExiste) return S_OK;
  if (uiTamanho != m_Registro.size())
    QV_RETURN_ARQ(E_QVCR_ARQUIVO_SINGLE_REG_NAO_TEM_TAMANHO_ESTRUTURA, {"GetLength", std::to_string(uiTamanho)},
                  {"sizeof(T)", std::to_string(m_Registro.size())});
  QV_CHECK_ARQ(LeDados(0, m_Registro.data(), m_Registro.size()));
  return S_OK;
}

HRESULT CQVFileSingleRegBase::LeRegistro(void* pRegistro) {
  std::memcpy(pRegistro, m_Registro.data(), m_Registro.size());
  return S_OK;
}

HRESULT CQVFileSingleRegBase::GravaRegistro(const void* pRegistro) {
  QV_CHECK_ARQ(AbreArquivo(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao));
  QV_CHECK_ARQ(PodeGravar());
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
