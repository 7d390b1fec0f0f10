#include "suite/servicedata/QVDadosGE.h"

#include <algorithm>

void CQVDadosGE_ServicoAcompanhamentoServico::PreparaParaSerClasse() {
  // The class entry only names the classification's title service: the
  // work, its value and the call that performs it belong to the entries of
  // the services themselves.
  bClasse = true;
  lPonteiroExecutor = 0;
  vQuantidade = 0;
  vValor = 0;
  dmcAtendimento = REG_QVDMC();
  lPonteiroServicoAtendimento = 0;
}

CQVDadosGE_ServicoAcompanhamentoServico CQVDadosGE_AcompanhamentoServico::CriaNovoServicoAcompanhamento(
    std::uint32_t lPonteiroServico, std::uint32_t lPonteiroClasse, std::uint32_t lPonteiroExecutor,
    QVMoeda vQuantidade, QVMoeda vValor, std::uint32_t iDataPrevista) {
  CQVDadosGE_ServicoAcompanhamentoServico servico;
  servico.lPonteiroServico = lPonteiroServico;
  servico.lPonteiroClasse = lPonteiroClasse;
  servico.lPonteiroExecutor = lPonteiroExecutor;
  servico.vQuantidade = vQuantidade;
  servico.vValor = vValor;
  servico.iDataPrevista = iDataPrevista;
  return servico;
}

const CQVDadosGE_ServicoAcompanhamentoServico* CQVDadosGE_AcompanhamentoServico::ProcuraServico(
    std::uint32_t lIdentificador) const {
  // 0 is the number of entries not yet written: it names none of them.
  if (lIdentificador == 0) return nullptr;
  const auto it = std::find_if(m_servicos.begin(), m_servicos.end(),
                               [&](const auto& s) { return s.lIdentificador == lIdentificador; });
  return it != m_servicos.end() ? &*it : nullptr;
}

const CQVDadosGE_ServicoAcompanhamentoServico* CQVDadosGE_AcompanhamentoServico::GetClasse() const {
  const auto it = std::find_if(m_servicos.begin(), m_servicos.end(), [](const auto& s) { return s.bClasse; });
  return it != m_servicos.end() ? &*it : nullptr;
}
