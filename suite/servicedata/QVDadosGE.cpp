// Stub: replaced by the implementation.
#include "suite/servicedata/QVDadosGE.h"

void CQVDadosGE_ServicoAcompanhamentoServico::PreparaParaSerClasse() {}
CQVDadosGE_ServicoAcompanhamentoServico CQVDadosGE_AcompanhamentoServico::CriaNovoServicoAcompanhamento(
    std::uint32_t, std::uint32_t, std::uint32_t, QVMoeda, QVMoeda, std::uint32_t) {
  return {};
}
const CQVDadosGE_ServicoAcompanhamentoServico* CQVDadosGE_AcompanhamentoServico::ProcuraServico(std::uint32_t) const {
  return nullptr;
}
const CQVDadosGE_ServicoAcompanhamentoServico* CQVDadosGE_AcompanhamentoServico::GetClasse() const { return nullptr; }
