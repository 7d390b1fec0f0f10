#include "suite/hostlink/QVSessaoSuite.h"

#include <cstdlib>
#include <filesystem>
#include <mutex>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "platform/QVCodePage.h"
#include "platform/QVFolders.h"
#include "platform/QVOsFile.h"
#include "suite/hostlink/CQVConexaoSuitePadrao.h"
#include "suite/store/CQVBancoSuite.h"

namespace {

std::mutex g_mutex;
std::shared_ptr<IQVSessaoSuite> g_sessao;
std::string g_raiz;

constexpr std::size_t kMaxBytesEmpresa = sizeof(_REG_DF_INICIALIZAPS::szEmpresa) - 1;

// Names the suite's file system keeps for devices, with or without an
// extension.
bool EhNomeDeDispositivo(const std::string& sNome) {
  const std::string sBase = QVMaiusculasCodePage(sNome.substr(0, sNome.find('.')));
  if (sBase == "CON" || sBase == "PRN" || sBase == "AUX" || sBase == "NUL") return true;
  return sBase.size() == 4 && (sBase.rfind("COM", 0) == 0 || sBase.rfind("LPT", 0) == 0) && sBase[3] >= '1' &&
         sBase[3] <= '9';
}

bool PodeSerPasta(const std::string& sNome) {
  if (sNome == "." || sNome == ".." || sNome.back() == ' ' || sNome.back() == '.' || EhNomeDeDispositivo(sNome))
    return false;
  for (unsigned char c : sNome)
    if (c < 0x20 || c == 0x7F || std::string_view("/\\<>:\"|?*").find(static_cast<char>(c)) != std::string_view::npos)
      return false;
  return true;
}

std::string Normal(const std::string& sCaminho) {
  std::string s = std::filesystem::path(sCaminho).lexically_normal().string();
  while (s.size() > 1 && s.back() == '/') s.pop_back();
  return s;
}

// Whether the company's folder would be the error log's: the same parent as
// written, the same name without regard to case.
bool EhPastaDoLog(const std::string& sEmpresa) {
  const std::filesystem::path log(Normal(QVProfilerDiretorio()));
  return Normal(log.parent_path().string()) == Normal(QVRaizDados()) &&
         QVIguaisSemCaixa(log.filename().string(), sEmpresa);
}

HRESULT Recusa(std::string* pMotivo, const char* sMotivo) {
  if (pMotivo != nullptr) *pMotivo = sMotivo;
  return E_QVDF_NOME_EMPRESA_INVALIDO;
}

}  // namespace

HRESULT CQVSessaoSuitePadrao::Conecta(const _REG_DF_INICIALIZAPS& regps, std::shared_ptr<IQVConexaoSuite>* ppConexao) {
  if (ppConexao == nullptr) return E_POINTER;
  ppConexao->reset();
  // An empty company is no company: the database's facade answers that.
  if (regps.szEmpresa[0] == '\0') return S_OK;
  const std::string sCampo = QVLeCampoTexto(regps.szEmpresa);
  std::string sMotivo;
  HRESULT hr = S_OK;
  if (sCampo.size() > kMaxBytesEmpresa)
    hr = Recusa(&sMotivo, "szEmpresa sem terminador");
  else if (!QVAnsiDefinido(sCampo))
    hr = Recusa(&sMotivo, "byte que não é caractere da página de código");
  else
    hr = QVValidaNomeEmpresa(QVAnsiToUtf8(sCampo), &sMotivo);
  if (FAILED(hr)) {
    QVLogaFalhaHr(QV_LOCAL, "E_QVDF_NOME_EMPRESA_INVALIDO", hr,
                  {{"szEmpresa", QVAnsiToUtf8(sCampo)}, {"sMotivo", sMotivo}});
    return hr;
  }

  const std::string sEmpresa = QVAnsiToUtf8(sCampo);
  const std::uint32_t lUsuario = regps.ulUsuario;
  std::shared_ptr<CQVBancoSuite> pBanco;
  QV_CHECK(QVBancoSuite(&pBanco));
  QVEmpresaSuite empresa;
  bool bAtivo = false, bPermitido = false;
  {
    auto trava = pBanco->Trava();
    QV_CHECK_HR(hr, QVProcuraEmpresaSuite(*pBanco, sEmpresa, &empresa));
    if (hr == S_OK) {
      CQVComandoSuite cmd;
      QV_CHECK(pBanco->Prepara("SELECT ativo, EXISTS (SELECT 1 FROM usuarios_empresas WHERE ponteiro_usuario = ?1 "
                               "AND ponteiro_empresa = ?2) FROM usuarios WHERE ponteiro = ?1",
                               &cmd));
      bool bLinha = false;
      QV_CHECK(cmd.Liga(1, std::int64_t{lUsuario}).Liga(2, std::int64_t{empresa.lPonteiro}).Passo(&bLinha));
      bAtivo = bLinha && cmd.Inteiro(0) != 0;
      bPermitido = bLinha && cmd.Inteiro(1) != 0;
    }
  }
  const auto recusa = [&](HRESULT hrRecusa, const char* sCodigo) {
    QVLogaFalhaHr(QV_LOCAL, sCodigo, hrRecusa, {{"szEmpresa", sEmpresa}, {"ulUsuario", std::to_string(lUsuario)}});
    return hrRecusa;
  };
  if (hr == S_FALSE) return recusa(E_QVDF_EMPRESA_NAO_CADASTRADA, "E_QVDF_EMPRESA_NAO_CADASTRADA");
  if (!bAtivo) return recusa(E_QVDF_USUARIO_NAO_CADASTRADO, "E_QVDF_USUARIO_NAO_CADASTRADO");
  if (!bPermitido) return recusa(E_QVDF_USUARIO_SEM_ACESSO_EMPRESA, "E_QVDF_USUARIO_SEM_ACESSO_EMPRESA");
  *ppConexao = std::make_shared<CQVConexaoSuitePadrao>(std::move(pBanco), empresa.lPonteiro, lUsuario);
  return S_OK;
}

HRESULT CQVSessaoSuitePadrao::GetDiretorioDadosModulo(std::uint32_t modulo, const std::string& empresa,
                                                      std::string* pDiretorio) {
  if (pDiretorio == nullptr) return E_POINTER;
  pDiretorio->clear();
  if (empresa.empty()) return S_OK;
  std::string sMotivo;
  if (const HRESULT hr = QVValidaNomeEmpresa(empresa, &sMotivo); FAILED(hr)) {
    QVLogaFalhaHr(QV_LOCAL, "E_QVDF_NOME_EMPRESA_INVALIDO", hr, {{"empresa", empresa}, {"sMotivo", sMotivo}});
    return hr;
  }
  std::shared_ptr<CQVBancoSuite> pBanco;
  QV_CHECK(QVBancoSuite(&pBanco));
  QVEmpresaSuite dados;
  {
    auto trava = pBanco->Trava();
    HRESULT hr = S_OK;
    QV_CHECK_HR(hr, QVProcuraEmpresaSuite(*pBanco, empresa, &dados));
    // A company the suite does not know has no directory: the caller says so.
    if (hr == S_FALSE) return S_OK;
  }
  // The store's folder is the suite's data, held to the rules of a name.
  if (dados.sPasta.empty() || !PodeSerPasta(dados.sPasta) || EhPastaDoLog(dados.sPasta)) {
    QVLogaFalhaHr(QV_LOCAL, "PodeSerPasta(dados.sPasta)", E_QVDF_NOME_EMPRESA_INVALIDO,
                  {{"empresa", empresa}, {"pasta", dados.sPasta}});
    return E_QVDF_NOME_EMPRESA_INVALIDO;
  }
  // One company, one folder: the one on disk under any case, else a new one
  // spelt as the store has it. The suite sets a company's folders up before
  // anyone asks for them; the embedded default makes them at the first
  // request.
  const std::string sRaiz = QVRaizDados();
  const std::string sEmpresa = sRaiz + "/" + QVResolveFolderCase(sRaiz, dados.sPasta);
  const std::string sDiretorio = sEmpresa + "/" + QVResolveFolderCase(sEmpresa, QVPastaModulo(modulo));
  QV_CHECK(QVCreateDirectories(sDiretorio));
  *pDiretorio = sDiretorio;
  return S_OK;
}

IQVSessaoSuite& QVSessaoSuite() {
  std::lock_guard lock(g_mutex);
  if (!g_sessao) g_sessao = std::make_shared<CQVSessaoSuitePadrao>();
  return *g_sessao;
}

void QVDefineSessaoSuite(std::shared_ptr<IQVSessaoSuite> sessao) {
  std::lock_guard lock(g_mutex);
  g_sessao = std::move(sessao);
}

void QVDefineRaizDados(const std::string& raiz) {
  std::lock_guard lock(g_mutex);
  g_raiz = raiz;
}

std::string QVRaizDados() {
  {
    std::lock_guard lock(g_mutex);
    if (!g_raiz.empty()) return g_raiz;
  }
  if (const char* env = std::getenv("ZELKORIN_ROOT"); env != nullptr && *env != '\0') return env;
  const char* home = std::getenv("HOME");
  return std::string(home != nullptr && *home != '\0' ? home : "/tmp") + "/.local/share/zelkorin";
}

std::string QVPastaModulo(std::uint32_t modulo) {
  if (modulo == QV_GE) return "GE";
  // Appended rather than "M" + to_string(): g++ 12 at -O3 warns falsely
  // (-Wrestrict) about the operator+ that takes a temporary.
  std::string sPasta = "M";
  sPasta += std::to_string(modulo);
  return sPasta;
}

HRESULT QVEmpresaParaRegistro(const std::string& sEmpresa, std::string* pAnsi, std::string* pMotivo) {
  std::string sAnsi;
  if (!QVUtf8ToAnsiExato(sEmpresa, &sAnsi)) return Recusa(pMotivo, "caractere fora da página de código (Windows-1252)");
  if (sAnsi.size() > kMaxBytesEmpresa) return Recusa(pMotivo, "mais de 47 bytes na página de código");
  *pAnsi = std::move(sAnsi);
  return S_OK;
}

std::string QVRecusaEmpresaParaRegistro(const std::string& sEmpresa) {
  std::string sAnsi, sMotivo;
  return FAILED(QVEmpresaParaRegistro(sEmpresa, &sAnsi, &sMotivo)) ? "empresa \"" + sEmpresa + "\": " + sMotivo
                                                                    : std::string();
}

HRESULT QVValidaNomeEmpresa(const std::string& sEmpresa, std::string* pMotivo) {
  std::string sAnsi;
  if (const HRESULT hr = QVEmpresaParaRegistro(sEmpresa, &sAnsi, pMotivo); FAILED(hr)) return hr;
  if (sEmpresa.empty() || !PodeSerPasta(sEmpresa)) return Recusa(pMotivo, "não pode ser nome de pasta");
  if (EhPastaDoLog(sEmpresa)) return Recusa(pMotivo, "é a pasta do log de erros");
  return S_OK;
}
