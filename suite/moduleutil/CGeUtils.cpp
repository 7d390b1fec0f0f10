// Stub: replaced by the implementation.
#include "suite/moduleutil/CGeUtils.h"

HRESULT CGeUtils::GetDiretorioDados(const std::string&, std::uint32_t, std::string*) { return E_NOTIMPL; }
HRESULT CGeUtils::CalcularValorTotalServicoAtendimento(QVMoeda, QVMoeda, int, QVMoeda*) { return E_NOTIMPL; }
void CGeUtils::ConverteCurrencyToHM(QVMoeda, std::int32_t*, std::int32_t*) {}
