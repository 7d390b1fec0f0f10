// Stub: replaced by the implementation.
#include "suite/moduleutil/CConexaoGesInteg.h"

CConexaoGesInteg::CConexaoGesInteg() = default;
CConexaoGesInteg::~CConexaoGesInteg() = default;
HRESULT CConexaoGesInteg::Inicializa(const std::string&, std::uint32_t, std::uint32_t) { return E_NOTIMPL; }
