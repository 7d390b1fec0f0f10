// The manager access over the suite store, bound to one company.
#pragma once

#include <cstdint>
#include <memory>

#include "suite/hostlink/IQVAcessoGerenciador.h"

class CQVBancoSuite;

class CQVAcessoGerenciadorSuite : public IQVAcessoGerenciador {
 public:
  CQVAcessoGerenciadorSuite(std::shared_ptr<CQVBancoSuite> pBanco, std::uint32_t lEmpresa)
      : m_pBanco(std::move(pBanco)), m_lEmpresa(lEmpresa) {}

  HRESULT LeEventosGoogle(const std::uint32_t* plPonteiroEventoAgenda, CQVDadosGE_ListaEventos* pLista) override;
  HRESULT GravaEventosGoogle(const CQVDadosGE_ListaEventos* pLista, std::uint32_t* plPonteiroEventoAgenda) override;
  HRESULT LeAcompanhamentoServico(const REG_QVDMC* pDmc, CQVDadosGE_AcompanhamentoServico* pDados,
                                  std::uint32_t modo = GE_ACM_LER_TUDO) override;
  HRESULT GravaAcompanhamentoServico(const CQVDadosGE_AcompanhamentoServico& dados, REG_QVDMC* pDmcGravado,
                                     bool bGravarServicos) override;
  HRESULT LeRegistroIntegracaoAcompanhamentoATTEC(const REG_QVDMC& dmcIntegracao,
                                                  CQVDadosGE_DadosIntegracaoAcompanhamentoServico* pDados) override;
  HRESULT InsereAcompanhamentoIntegracaoATTEC(CQVDadosGE_AcompanhamentoServico& dadosNovo,
                                              const REG_QVDMC& dmcAtendimento,
                                              CQVDadosGE_DadosIntegracaoAcompanhamentoServico* pGerada) override;
  HRESULT LePropriedadesAcompanhamento(CQVDadosGE_PropriedadesAcompanhamento* pDados) override;
  HRESULT LeMestre(CQVDadosGE_Mestre* pDados) override;
  HRESULT LeProjeto(std::uint32_t lPonteiro, CQVDadosGE_Projeto* pDados) override;
  HRESULT GravaProjeto(CQVDadosGE_Projeto& dados) override;

 private:
  std::shared_ptr<CQVBancoSuite> m_pBanco;
  std::uint32_t m_lEmpresa;
};
