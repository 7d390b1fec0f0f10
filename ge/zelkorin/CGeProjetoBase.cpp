#include "ge/zelkorin/CGeProjetoBase.h"

#include <cstring>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"

CGeProjetoBase::~CGeProjetoBase() { QV_LOGA(Finaliza()); }

HRESULT CGeProjetoBase::OnInicializa() {
  QV_CHECK(CQVBaseParaRotinas::OnInicializa());
  QV_CHECK(GetDiretorioDadosModulo(QV_GE, &m_sDiretorioDados));
  if (m_sDiretorioDados.empty()) QV_RETURN(E_QVDF_EMPRESA_SEM_DIRETORIO_DADOS);
  return S_OK;
}

HRESULT CGeProjetoBase::BuscaPonteiros(const _REG_FILTRO_PROJETO_PS&, _REG_PTR_PROJETO_PS* pRegPonteiros) {
  if (pRegPonteiros != nullptr) std::memset(pRegPonteiros, 0, sizeof *pRegPonteiros);
  return E_NOTIMPL;
}

HRESULT CGeProjetoBase::BuscaRegistros(const _REG_PTR_PROJETO_PS&, _REG_LISTA_PROJETOS_PS* pRegLista) {
  if (pRegLista != nullptr) std::memset(pRegLista, 0, sizeof *pRegLista);
  return E_NOTIMPL;
}

HRESULT CGeProjetoBase::LeRegistro(std::uint32_t, _REG_PROJETO_ATENDIMENTO_PS* regps) {
  if (regps != nullptr) std::memset(regps, 0, sizeof *regps);
  return E_NOTIMPL;
}

HRESULT CGeProjetoBase::Grava(_REG_PROJETO_ATENDIMENTO_PS*) { return E_NOTIMPL; }
