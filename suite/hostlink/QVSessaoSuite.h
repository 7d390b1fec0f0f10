// The suite's session library, as this server needs it.
//
// The suite's own session library is closed; these interfaces are the
// operations the server calls on it, and CQVSessaoSuitePadrao is the
// embedded default that stands in for it: it accepts any company and user
// and keeps each company's data under one data root.
//
// Default data layout: <raiz>/<empresa>/<pasta do módulo>/, the module
// folder being "GE" for the GE module (9) and "M<n>" for any other; the
// folders are made at the first request for them. The
// data root is QVDefineRaizDados, else the environment variable
// ZELKORIN_ROOT, else $HOME/.local/share/zelkorin. A company whose name
// cannot be a folder name ("", ".", "..", or with '/', '\\' or control
// characters) has no data directory.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "df/qvlibex/QVRegistrosDF.h"
#include "platform/QVHResult.h"

// Module codes of the suite.
inline constexpr std::uint32_t QV_GE = 9;

// The suite's shared services for a connected session: follow-up records,
// calendar events, projects of other modules, the company's master record.
// Each operation is added here with the data objects it exchanges.
class IQVAcessoGerenciador {
 public:
  virtual ~IQVAcessoGerenciador() = default;
};

// The suite's master data (customers, services, users, branches,
// municipalities) for a connected session. Each reader is added here with
// the data objects it returns.
class IQVAcessoEmpresarial {
 public:
  virtual ~IQVAcessoEmpresarial() = default;
};

class IQVSessaoSuite {
 public:
  virtual ~IQVSessaoSuite() = default;
  // Validates the user and session of an initialisation record and connects
  // them to the record's company.
  [[nodiscard]] virtual HRESULT Conecta(const _REG_DF_INICIALIZAPS& regps) = 0;
  // The data directory of a module for a company; "" when it has none.
  [[nodiscard]] virtual HRESULT GetDiretorioDadosModulo(std::uint32_t modulo, const std::string& empresa,
                                                        std::string* pDiretorio) = 0;
  virtual IQVAcessoGerenciador* GetAcessoGerenciador() = 0;
  virtual IQVAcessoEmpresarial* GetAcessoEmpresarial() = 0;
};

class CQVSessaoSuitePadrao : public IQVSessaoSuite {
 public:
  HRESULT Conecta(const _REG_DF_INICIALIZAPS& regps) override;
  HRESULT GetDiretorioDadosModulo(std::uint32_t modulo, const std::string& empresa,
                                  std::string* pDiretorio) override;
  IQVAcessoGerenciador* GetAcessoGerenciador() override { return &m_Gerenciador; }
  IQVAcessoEmpresarial* GetAcessoEmpresarial() override { return &m_Empresarial; }

 private:
  IQVAcessoGerenciador m_Gerenciador;
  IQVAcessoEmpresarial m_Empresarial;
};

// The session library of the process (the embedded default unless one was
// installed).
IQVSessaoSuite& QVSessaoSuite();
void QVDefineSessaoSuite(std::shared_ptr<IQVSessaoSuite> sessao);

void QVDefineRaizDados(const std::string& raiz);
std::string QVRaizDados();
// The folder name of a module under a company's directory.
std::string QVPastaModulo(std::uint32_t modulo);
// Whether a company name can be used as a folder name.
bool QVNomeEmpresaValido(const std::string& empresa);
