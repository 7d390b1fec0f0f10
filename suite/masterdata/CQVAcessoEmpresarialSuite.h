// The business access (master data) over the suite store, bound to one
// company.
#pragma once

#include <cstdint>
#include <memory>

#include "suite/masterdata/IQVAcessoEmpresarial.h"

class CQVBancoSuite;

class CQVAcessoEmpresarialSuite : public IQVAcessoEmpresarial {
 public:
  CQVAcessoEmpresarialSuite(std::shared_ptr<CQVBancoSuite> pBanco, std::uint32_t lEmpresa)
      : m_pBanco(std::move(pBanco)), m_lEmpresa(lEmpresa) {}

  HRESULT LeBufferFiliaisAtivas(std::uint32_t lUsuario, CQVDadosDF_FiliaisAtivas* pDados) override;
  HRESULT LeFilial(std::uint32_t lPonteiro, CQVDadosDF_Filial* pDados) override;
  HRESULT BuscaPonteirosUsuario(const CQVDadosDF_UsuarioFiltro& filtro, std::vector<std::uint32_t>* pPonteiros) override;
  HRESULT LeUsuario(std::uint32_t lPonteiro, CQVDadosDF_Usuario* pDados) override;
  HRESULT LeBufferCFRTLibPla(std::uint32_t lPonteiro, CQVDadosDF_Cliente* pDados) override;
  HRESULT LeMunicipio(std::uint32_t lPonteiro, CQVDadosDF_Municipio* pDados) override;
  HRESULT LeServico(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) override;
  HRESULT LeBufferServico(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) override;
  HRESULT LeBufferServicoEx(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) override;
  HRESULT ExisteClassificacaoTituloServico(const std::string& sClassificacao, std::uint32_t* plPonteiroClasse,
                                           CQVDadosDF_Servico* pDados) override;
  HRESULT LeUnidadeMedida(std::uint32_t lPonteiro, CQVDadosDF_UnidadeMedida* pDados) override;
  HRESULT LeContrato(std::uint32_t lPonteiro, CQVDadosDF_Contrato* pDados) override;
  HRESULT LeEmpresa(CQVDadosDF_Empresa* pDados) override;
  HRESULT LeMensagem(std::uint32_t lNumero, std::string* psTexto) override;
  HRESULT LeVinculos(std::uint16_t iMA, std::uint32_t lPosicao, CIEVinculo* pDados) override;

 private:
  std::shared_ptr<CQVBancoSuite> m_pBanco;
  std::uint32_t m_lEmpresa;
};
