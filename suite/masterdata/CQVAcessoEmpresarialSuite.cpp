// Stub: replaced by the implementation.
#pragma GCC diagnostic ignored "-Wunused-parameter"
#include "suite/masterdata/CQVAcessoEmpresarialSuite.h"

HRESULT CQVAcessoEmpresarialSuite::LeBufferFiliaisAtivas(std::uint32_t lUsuario, CQVDadosDF_FiliaisAtivas* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeFilial(std::uint32_t lPonteiro, CQVDadosDF_Filial* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::BuscaPonteirosUsuario(const CQVDadosDF_UsuarioFiltro& filtro, std::vector<std::uint32_t>* pPonteiros) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeUsuario(std::uint32_t lPonteiro, CQVDadosDF_Usuario* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeBufferCFRTLibPla(std::uint32_t lPonteiro, CQVDadosDF_Cliente* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeMunicipio(std::uint32_t lPonteiro, CQVDadosDF_Municipio* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeServico(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeBufferServico(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeBufferServicoEx(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::ExisteClassificacaoTituloServico(const std::string& sClassificacao, std::uint32_t* plPonteiroClasse, CQVDadosDF_Servico* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeUnidadeMedida(std::uint32_t lPonteiro, CQVDadosDF_UnidadeMedida* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeContrato(std::uint32_t lPonteiro, CQVDadosDF_Contrato* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeEmpresa(CQVDadosDF_Empresa* pDados) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeMensagem(std::uint32_t lNumero, std::string* psTexto) { return E_NOTIMPL; }
HRESULT CQVAcessoEmpresarialSuite::LeVinculos(std::uint16_t iMA, std::uint32_t lPosicao, CIEVinculo* pDados) { return E_NOTIMPL; }
