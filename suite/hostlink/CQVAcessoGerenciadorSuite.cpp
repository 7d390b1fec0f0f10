// Stub: replaced by the implementation.
#pragma GCC diagnostic ignored "-Wunused-parameter"
#include "suite/hostlink/CQVAcessoGerenciadorSuite.h"

HRESULT CQVAcessoGerenciadorSuite::LeEventosGoogle(const std::uint32_t* plPonteiroEventoAgenda, CQVDadosGE_ListaEventos* pLista) { return E_NOTIMPL; }
HRESULT CQVAcessoGerenciadorSuite::GravaEventosGoogle(const CQVDadosGE_ListaEventos* pLista, std::uint32_t* plPonteiroEventoAgenda) { return E_NOTIMPL; }
HRESULT CQVAcessoGerenciadorSuite::LeAcompanhamentoServico(const REG_QVDMC* pDmc, CQVDadosGE_AcompanhamentoServico* pDados, std::uint32_t modo) { return E_NOTIMPL; }
HRESULT CQVAcessoGerenciadorSuite::GravaAcompanhamentoServico(const CQVDadosGE_AcompanhamentoServico& dados, REG_QVDMC* pDmcGravado, bool bGravarServicos) { return E_NOTIMPL; }
HRESULT CQVAcessoGerenciadorSuite::LeRegistroIntegracaoAcompanhamentoATTEC(const REG_QVDMC& dmcIntegracao, CQVDadosGE_DadosIntegracaoAcompanhamentoServico* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoGerenciadorSuite::InsereAcompanhamentoIntegracaoATTEC(CQVDadosGE_AcompanhamentoServico& dadosNovo, const REG_QVDMC& dmcAtendimento, CQVDadosGE_DadosIntegracaoAcompanhamentoServico* pGerada) { return E_NOTIMPL; }
HRESULT CQVAcessoGerenciadorSuite::LePropriedadesAcompanhamento(CQVDadosGE_PropriedadesAcompanhamento* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoGerenciadorSuite::LeMestre(CQVDadosGE_Mestre* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoGerenciadorSuite::LeProjeto(std::uint32_t lPonteiro, CQVDadosGE_Projeto* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoGerenciadorSuite::GravaProjeto(CQVDadosGE_Projeto& dados) { return E_NOTIMPL; }
