// The connection to the suite's integration services of the GE module
// (IQVGE_Integracao): the invoices issued for service calls and what was
// received for them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "df/qvlibex/QVMoeda.h"
#include "platform/QVHResult.h"

class CQVBancoSuite;

// An invoice of the company, with the service call it charged (month code
// and position of the call; 0 and 0 for an invoice of no call).
struct CQVDadosGE_NotaFiscal {
  std::uint32_t lPonteiro = 0;
  std::int64_t i64Numero = 0;
  std::string sSerie;
  std::uint32_t iDataEmissao = 0;
  std::uint32_t lPonteiroCliente = 0;
  std::uint32_t lPonteiroServico = 0;
  std::uint16_t iMAAtendimento = 0;
  std::uint32_t lPosicaoAtendimento = 0;
  QVMoeda vValor = 0;
  QVMoeda vValorRecebido = 0;
  bool bCancelada = false;
};

class IQVGE_Integracao {
 public:
  virtual ~IQVGE_Integracao() = default;
  // Loads the company's invoices issued from iDataInicial to iDataFinal
  // (day numbers, both included; 0 leaves that side open), of lCliente and
  // lServico when not 0, cancelled ones left out, by issue date then
  // number; GetNotasFiscais hands them out until the next load.
  [[nodiscard]] virtual HRESULT LeNotasFiscais(std::uint32_t iDataInicial, std::uint32_t iDataFinal,
                                               std::uint32_t lCliente, std::uint32_t lServico) = 0;
  virtual const std::vector<CQVDadosGE_NotaFiscal>& GetNotasFiscais() const = 0;
  // What was received for the invoices (not cancelled) of the call at
  // (iMA, lPosicao): their vValorRecebido summed; 0 with none (S_OK).
  [[nodiscard]] virtual HRESULT GetValorRecebidoAtTecFaturado(std::uint16_t iMA, std::uint32_t lPosicao,
                                                              QVMoeda* pvValor) = 0;
};

class CConexaoGesInteg {
 public:
  CConexaoGesInteg();
  ~CConexaoGesInteg();
  // Connects for a company known to the suite (E_QVDF_EMPRESA_NAO_CADASTRADA
  // otherwise); the user and session are the caller's.
  [[nodiscard]] HRESULT Inicializa(const std::string& sEmpresa, std::uint32_t lUsuario, std::uint32_t lSessao);
  // The interface; valid after a successful Inicializa.
  IQVGE_Integracao* operator->() { return m_pIntegracao.get(); }
  IQVGE_Integracao* Get() { return m_pIntegracao.get(); }

 private:
  std::unique_ptr<IQVGE_Integracao> m_pIntegracao;
};
