// The suite's shared services for a connected session ("manager access",
// GetAcessoGerenciador()): follow-up records and their integration with
// service calls, calendar events, the module's settings and the company's
// master settings, projects of the suite. Bound to the session's company.
//
// Statuses: S_OK; E_QVDF_REGISTRO_SUITE_INEXISTENTE (one error line) for a
// reference or pointer of no record of this company; E_POINTER for a null
// output; the store's statuses (CQVBancoSuite.h). Every write is one
// transaction: all of it or nothing.
#pragma once

#include <cstdint>

#include "df/qvlibex/QVDmc.h"
#include "platform/QVHResult.h"
#include "suite/servicedata/QVDadosGE.h"

class IQVAcessoGerenciador {
 public:
  virtual ~IQVAcessoGerenciador() = default;

  // ---- calendar events of a service call ----
  // The list kept under *plPonteiroEventoAgenda (pointer 0: S_OK, empty).
  [[nodiscard]] virtual HRESULT LeEventosGoogle(const std::uint32_t* plPonteiroEventoAgenda,
                                                CQVDadosGE_ListaEventos* pLista) = 0;
  // Replaces the list kept under *plPonteiroEventoAgenda with pLista's
  // events, in order; pointer 0 makes a new list and writes its pointer
  // there. An empty list under pointer 0 keeps nothing and leaves it 0.
  [[nodiscard]] virtual HRESULT GravaEventosGoogle(const CQVDadosGE_ListaEventos* pLista,
                                                   std::uint32_t* plPonteiroEventoAgenda) = 0;

  // ---- follow-ups ----
  // The follow-up named by *pDmc: all of it (GE_ACM_LER_TUDO), or its dmc
  // and services only (GE_ACM_LER_SOMENTE_SERVICO).
  [[nodiscard]] virtual HRESULT LeAcompanhamentoServico(const REG_QVDMC* pDmc, CQVDadosGE_AcompanhamentoServico* pDados,
                                                        std::uint32_t modo = GE_ACM_LER_TUDO) = 0;
  // Writes an existing follow-up (dados.dmc names it) and returns its
  // reference in *pDmcGravado. bGravarServicos: its services too, as given:
  // entries with lIdentificador 0 get the next free numbers; entries no
  // longer given are removed. Otherwise the stored services stay.
  [[nodiscard]] virtual HRESULT GravaAcompanhamentoServico(const CQVDadosGE_AcompanhamentoServico& dados,
                                                           REG_QVDMC* pDmcGravado, bool bGravarServicos) = 0;
  // The integration record named by dmcIntegracao.
  [[nodiscard]] virtual HRESULT LeRegistroIntegracaoAcompanhamentoATTEC(
      const REG_QVDMC& dmcIntegracao, CQVDadosGE_DadosIntegracaoAcompanhamentoServico* pDados) = 0;
  // Inserts a new follow-up for the service call dmcAtendimento, with its
  // services (numbered from 1), and the integration record tying them:
  // dadosNovo.dmc and its entries' numbers are filled, *pGerada names both.
  [[nodiscard]] virtual HRESULT InsereAcompanhamentoIntegracaoATTEC(
      CQVDadosGE_AcompanhamentoServico& dadosNovo, const REG_QVDMC& dmcAtendimento,
      CQVDadosGE_DadosIntegracaoAcompanhamentoServico* pGerada) = 0;
  [[nodiscard]] virtual HRESULT LePropriedadesAcompanhamento(CQVDadosGE_PropriedadesAcompanhamento* pDados) = 0;

  // ---- the company and projects ----
  [[nodiscard]] virtual HRESULT LeMestre(CQVDadosGE_Mestre* pDados) = 0;
  [[nodiscard]] virtual HRESULT LeProjeto(std::uint32_t lPonteiro, CQVDadosGE_Projeto* pDados) = 0;
  // Inserts (lPonteiro 0: the new pointer is written back) or rewrites a
  // project of the company.
  [[nodiscard]] virtual HRESULT GravaProjeto(CQVDadosGE_Projeto& dados) = 0;
};
