// Stub: replaced by the implementation.
#include "suite/linkedfields/CIEVinculo.h"

EQVTipoCampoVinculo QVTipoCampoVinculo(std::int32_t) { return EQVTipoCampoVinculo::Invalido; }
bool QVCampoVinculo::Vazio() const { return true; }
bool CIEVinculo::Vazio() const { return true; }
void CIEVinculo::Adiciona(const QVCampoVinculo&) {}
const QVCampoVinculo* CIEVinculo::Procura(std::int32_t) const { return nullptr; }
bool CIEVinculo::Corresponde(const CIEVinculo&) const { return true; }
