// The suite's master data for a connected session ("business access",
// GetAcessoEmpresarial()): what the searches, the follow-up integration and
// the reports read. Every reader is bound to the session's company.
//
// Statuses of every reader: S_OK with the object filled;
// E_QVDF_REGISTRO_SUITE_INEXISTENTE (one error line naming the table and
// the pointer) for a pointer of no record, of a record of another company,
// or 0; E_POINTER for a null output; the store's statuses
// (CQVBancoSuite.h). The output is reset before anything is read.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/QVHResult.h"
#include "suite/linkedfields/CIEVinculo.h"
#include "suite/masterdata/QVDadosDF.h"

class IQVAcessoEmpresarial {
 public:
  virtual ~IQVAcessoEmpresarial() = default;

  // The branches active for a user in the session's company (S_OK with an
  // empty list for a user with none).
  [[nodiscard]] virtual HRESULT LeBufferFiliaisAtivas(std::uint32_t lUsuario, CQVDadosDF_FiliaisAtivas* pDados) = 0;
  [[nodiscard]] virtual HRESULT LeFilial(std::uint32_t lPonteiro, CQVDadosDF_Filial* pDados) = 0;
  // The users of the filter, pointers ascending (S_OK with none).
  [[nodiscard]] virtual HRESULT BuscaPonteirosUsuario(const CQVDadosDF_UsuarioFiltro& filtro,
                                                      std::vector<std::uint32_t>* pPonteiros) = 0;
  [[nodiscard]] virtual HRESULT LeUsuario(std::uint32_t lPonteiro, CQVDadosDF_Usuario* pDados) = 0;
  // A client with its municipality.
  [[nodiscard]] virtual HRESULT LeBufferCFRTLibPla(std::uint32_t lPonteiro, CQVDadosDF_Cliente* pDados) = 0;
  [[nodiscard]] virtual HRESULT LeMunicipio(std::uint32_t lPonteiro, CQVDadosDF_Municipio* pDados) = 0;
  // A service of the catalogue, with its unit of measure and decimals; the
  // three names are the suite's three entries to one reader.
  [[nodiscard]] virtual HRESULT LeServico(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) = 0;
  [[nodiscard]] virtual HRESULT LeBufferServico(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) = 0;
  [[nodiscard]] virtual HRESULT LeBufferServicoEx(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) = 0;
  // The title service of a classification: of the company's title services
  // ('T') whose classification is a prefix of sClassificacao (equal
  // included), the one with the longest. S_OK with it; S_FALSE, pointer 0
  // and an empty object when there is none (no error line: a service
  // outside any title is normal).
  [[nodiscard]] virtual HRESULT ExisteClassificacaoTituloServico(const std::string& sClassificacao,
                                                                 std::uint32_t* plPonteiroClasse,
                                                                 CQVDadosDF_Servico* pDados) = 0;
  [[nodiscard]] virtual HRESULT LeUnidadeMedida(std::uint32_t lPonteiro, CQVDadosDF_UnidadeMedida* pDados) = 0;
  [[nodiscard]] virtual HRESULT LeContrato(std::uint32_t lPonteiro, CQVDadosDF_Contrato* pDados) = 0;
  // The session's company.
  [[nodiscard]] virtual HRESULT LeEmpresa(CQVDadosDF_Empresa* pDados) = 0;
  // A message of the suite by number (the status n OR 0x80040000's text);
  // E_QVDF_REGISTRO_SUITE_INEXISTENTE for a number without text.
  [[nodiscard]] virtual HRESULT LeMensagem(std::uint32_t lNumero, std::string* psTexto) = 0;
  // The linked information of a service call, keyed by the month of its
  // date and its position: S_OK with its fields, S_FALSE with none stored.
  [[nodiscard]] virtual HRESULT LeVinculos(std::uint16_t iMA, std::uint32_t lPosicao, CIEVinculo* pDados) = 0;
};
