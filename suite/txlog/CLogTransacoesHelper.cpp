// Stub: replaced by the implementation.
#include "suite/txlog/CLogTransacoesHelper.h"

HRESULT CLogTransacoesHelper::Inicializa(const CQVBaseParaRotinas*) { return E_NOTIMPL; }
HRESULT CLogTransacoesHelper::Grava(const REG_QVDMC&, E_GE_REGISTRO_LOG, char, const std::string&) { return E_NOTIMPL; }
