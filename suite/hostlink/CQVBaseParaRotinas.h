// The session base every server object derives from: the connection of one
// client object to the suite (company, user, session, module), its
// initialised flag, its last-error holder and its generic-function entry.
//
// Inicializa(regps) asks the suite's session library to validate and connect
// the record's user and session, takes the identity from the record and
// ends in the derived class's OnInicializa (which opens the company's data).
// A refused initialisation leaves the object with no session at all: no
// connection, no record, the stand-in accesses below.
// Inicializa(outra) gives a helper object (a filter, a report job, a log
// helper) the session of another, initialised one: same identity, same
// connection, and runs its own OnInicializa.
//
// Before a connection (or for a record without a company) the accesses are
// stand-ins whose every operation answers E_QVDF_SEM_SESSAO_SUITE, so a
// call through them is never a null dereference.
// Texts inside the server are UTF-8: the record's company (in the suite's
// code page) is converted on the way in.
#pragma once

#include <atomic>
#include <memory>
#include <cstdint>
#include <string>

#include "df/qvlibex/CQVUltimoErro.h"
#include "suite/hostlink/CQVInicializador.h"
#include "suite/hostlink/QVSessaoSuite.h"

class CQVBaseParaRotinas : public CQVInicializador, public CQVUltimoErro {
 public:
  CQVBaseParaRotinas() = default;
  ~CQVBaseParaRotinas() override = default;

  using CQVInicializador::Inicializa;
  [[nodiscard]] HRESULT Inicializa(const _REG_DF_INICIALIZAPS& regps);
  [[nodiscard]] HRESULT Inicializa(const CQVBaseParaRotinas* pOutra);

  // The module whose data this object works on (the GE servers answer QV_GE).
  virtual std::uint32_t GetModulo() const { return 0; }
  // The object's session base; the call frame registers it as the process's
  // default access for the duration of each call.
  virtual CQVBaseParaRotinas* GetBaseParaRotinas() { return this; }
  // The generic-function entry. The base knows no function: it answers
  // E_NOTIMPL with *ppregOutps null.
  [[nodiscard]] virtual HRESULT FuncaoGenerica(std::uint32_t ulFuncao, const _REG_DF_FUNCAO_GENERICAPS& regInps,
                                               _REG_DF_FUNCAO_GENERICAPS** ppregOutps);

  // The data directory of a module for this object's company ("" when none).
  [[nodiscard]] HRESULT GetDiretorioDadosModulo(std::uint32_t modulo, std::string* pDiretorio) const;
  IQVAcessoGerenciador* GetAcessoGerenciador() const;
  IQVAcessoEmpresarial* GetAcessoEmpresarial() const;
  // The session's connection; null before Inicializa or without a company.
  const std::shared_ptr<IQVConexaoSuite>& GetConexao() const { return m_pConexao; }

  const _REG_DF_INICIALIZAPS* GetRegistroInicializacao() const override {
    return m_bTemRegistro ? &m_regInicializacao : nullptr;
  }

  // The process-wide default access: the session of the call in progress.
  static void SetAcessoDefault(CQVBaseParaRotinas* pBase);
  static CQVBaseParaRotinas* GetAcessoDefault();

 private:
  std::shared_ptr<IQVConexaoSuite> m_pConexao;
  _REG_DF_INICIALIZAPS m_regInicializacao{};
  bool m_bTemRegistro = false;
  static std::atomic<CQVBaseParaRotinas*> s_pAcessoDefault;
};
