// The suite's session library, as this server needs it.
//
// The suite's own session library is closed; these interfaces are the
// operations the server calls on it, and CQVSessaoSuitePadrao is the
// embedded default that stands in for it, over the suite store of the data
// root (suite/store/CQVBancoSuite.h, "suite.db"). It accepts a session, in
// this order of checks, only for
//  - a company name that can name a folder (below), else
//    E_QVDF_NOME_EMPRESA_INVALIDO;
//  - a company the store knows (empresas.nome, letter case not counting,
//    as below), else E_QVDF_EMPRESA_NAO_CADASTRADA;
//  - the record's user (ulUsuario, a row id of usuarios) when it exists
//    and is active, else E_QVDF_USUARIO_NAO_CADASTRADO;
//  - and is allowed in that company (usuarios_empresas), else
//    E_QVDF_USUARIO_SEM_ACESSO_EMPRESA.
// Each refusal writes one error line naming the company and the user; a
// failure of the store answers the store's status.
//
// Default data layout: <raiz>/<pasta da empresa>/<pasta do módulo>/, the
// company's folder being its "pasta" in the store, else its name as the
// store has it (held to the folder rules below); the module folder
// being "GE" for the GE module (9) and "M<n>" for any other; each found on
// disk under any case, and made at the first request for it. A company the
// store does not know has no data directory. The data root is
// QVDefineRaizDados, else the environment variable ZELKORIN_ROOT, else
// $HOME/.local/share/zelkorin.
//
// Company names, as the suite's file system sees them: letter case does not
// count (the code page's letters, QVIguaisSemCaixa), so "Empresa" and
// "EMPRESA" are one company whose folder is the one already on disk under
// any case. The embedded default refuses, with
// E_QVDF_NOME_EMPRESA_INVALIDO and the reason in the error log, a name that
// (QVValidaNomeEmpresa):
//  - has a character outside the suite's code page, or more than 47 bytes
//    in it (szEmpresa is char[48] with its terminator): never cut, never a
//    '?' in its place;
//  - cannot be a folder name: ".", "..", a '/', '\\', control character or
//    one of <>:"|?*, a trailing space or dot (dropped by the suite's file
//    system: another company's folder), a device name (CON, NUL, COM1...);
//  - is the error log's folder ("QVProfiler", any case) when the log lives
//    under the data root.
// An empty name is no company: it has no data directory.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "df/qvlibex/QVRegistrosDF.h"
#include "platform/QVHResult.h"

// Module codes of the suite.
inline constexpr std::uint32_t QV_GE = 9;

class IQVAcessoGerenciador;
class IQVAcessoEmpresarial;

// A session the suite accepted: the company and user it was accepted for,
// and its two accesses, bound to that company (IQVAcessoGerenciador.h,
// suite/masterdata/IQVAcessoEmpresarial.h). Shared by the session base and
// the helper objects it initialises (filters, report jobs).
class IQVConexaoSuite {
 public:
  virtual ~IQVConexaoSuite() = default;
  virtual std::uint32_t GetPonteiroEmpresa() const = 0;
  virtual std::uint32_t GetPonteiroUsuario() const = 0;
  virtual IQVAcessoGerenciador* GetAcessoGerenciador() = 0;
  virtual IQVAcessoEmpresarial* GetAcessoEmpresarial() = 0;
};

class IQVSessaoSuite {
 public:
  virtual ~IQVSessaoSuite() = default;
  // Validates the company, user and session of an initialisation record
  // and connects them: *ppConexao is the session's connection (null after
  // a refusal). A record without a company connects to nothing (S_OK,
  // null): the database's facade answers that case.
  [[nodiscard]] virtual HRESULT Conecta(const _REG_DF_INICIALIZAPS& regps,
                                        std::shared_ptr<IQVConexaoSuite>* ppConexao) = 0;
  // The data directory of a module for a company (UTF-8); S_OK with ""
  // when it has none (no company, or one the suite does not know): the
  // caller answers E_QVDF_EMPRESA_SEM_DIRETORIO_DADOS.
  [[nodiscard]] virtual HRESULT GetDiretorioDadosModulo(std::uint32_t modulo, const std::string& empresa,
                                                        std::string* pDiretorio) = 0;
};

// The embedded default over the suite store of the data root
// (suite/store/CQVBancoSuite.h).
class CQVSessaoSuitePadrao : public IQVSessaoSuite {
 public:
  HRESULT Conecta(const _REG_DF_INICIALIZAPS& regps, std::shared_ptr<IQVConexaoSuite>* ppConexao) override;
  HRESULT GetDiretorioDadosModulo(std::uint32_t modulo, const std::string& empresa,
                                  std::string* pDiretorio) override;
};

// The session library of the process (the embedded default unless one was
// installed).
IQVSessaoSuite& QVSessaoSuite();
void QVDefineSessaoSuite(std::shared_ptr<IQVSessaoSuite> sessao);

void QVDefineRaizDados(const std::string& raiz);
std::string QVRaizDados();
// The folder name of a module under a company's directory.
std::string QVPastaModulo(std::uint32_t modulo);

// The company of an initialisation record from a user's text (UTF-8): its
// bytes in the suite's code page, exactly. E_QVDF_NOME_EMPRESA_INVALIDO,
// with the reason in *pMotivo, when a character has no byte there or the
// bytes do not fit szEmpresa: never cut, never replaced. Whatever builds a
// record from a company it was given goes through here.
[[nodiscard]] HRESULT QVEmpresaParaRegistro(const std::string& sEmpresa, std::string* pAnsi,
                                            std::string* pMotivo = nullptr);
// The same as a command-line check: "" when accepted, else the reason.
std::string QVRecusaEmpresaParaRegistro(const std::string& sEmpresa);
// Whether a company name (UTF-8, not empty) can be a company of this
// session library; the rules above. S_OK or E_QVDF_NOME_EMPRESA_INVALIDO
// with the reason in *pMotivo.
[[nodiscard]] HRESULT QVValidaNomeEmpresa(const std::string& sEmpresa, std::string* pMotivo = nullptr);
