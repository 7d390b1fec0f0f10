// The session base every server object derives from: the connection of one
// client object to the suite (company, user, session, module), its
// initialised flag, its last-error holder and its generic-function entry.
//
// Inicializa(regps) asks the suite's session library to validate and connect
// the record's user and session, takes the identity from the record and
// ends in the derived class's OnInicializa (which opens the company's data).
// Texts inside the server are UTF-8: the record's company (in the suite's
// code page) is converted on the way in.
#pragma once

#include <atomic>
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
  IQVAcessoGerenciador* GetAcessoGerenciador() const { return QVSessaoSuite().GetAcessoGerenciador(); }
  IQVAcessoEmpresarial* GetAcessoEmpresarial() const { return QVSessaoSuite().GetAcessoEmpresarial(); }

  const _REG_DF_INICIALIZAPS* GetRegistroInicializacao() const override {
    return m_bTemRegistro ? &m_regInicializacao : nullptr;
  }

  // The process-wide default access: the session of the call in progress.
  static void SetAcessoDefault(CQVBaseParaRotinas* pBase);
  static CQVBaseParaRotinas* GetAcessoDefault();

 private:
  _REG_DF_INICIALIZAPS m_regInicializacao{};
  bool m_bTemRegistro = false;
  static std::atomic<CQVBaseParaRotinas*> s_pAcessoDefault;
};
