#include "tests/support/QVServidorTeste.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <thread>

#include "core/QVRPCDLL/IQVUnknown.h"
#include "ge/zelkorin/transport/CQVConexaoZelkorin.h"
#include "ge/zelkorin/ZelkorinClasses.h"
#include "ge/zelkorin/transport/ZelkorinRpcServidor.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"

namespace {

std::map<std::string, std::function<void()>>& Personalidades() {
  static std::map<std::string, std::function<void()>> m;
  return m;
}

// The value after an argument's name, or "".
std::string Argumento(int argc, char** argv, const char* nome) {
  for (int i = 1; i + 1 < argc; ++i)
    if (std::strcmp(argv[i], nome) == 0) return argv[i + 1];
  return {};
}

// The test main pointed the settings and the log into the test's
// directory already; the data root is not the test's own, as the test may
// hold the same files open.
void RaizDoPapel() { QVDefineRaizDados(QVTesteDiretorio() + "/dados-servidor"); }

int Servidor(int argc, char** argv) {
  RaizDoPapel();
  // Its suite knows the company and user of the tests' records
  // (QVTesteInicializaPS), as the tests' own does.
  if (QVTesteCadastraEmpresa(kQVTesteEmpresa) == 0) return 4;
  const auto it = Personalidades().find(Argumento(argc, argv, "--servidor-teste"));
  if (it == Personalidades().end()) return 3;
  it->second();
  QVOpcoesServidor opcoes;
  opcoes.sSocket = Argumento(argc, argv, "--socket");
  opcoes.sEscuta = Argumento(argc, argv, "--listen");
  if (const std::string v = Argumento(argc, argv, "--max-elementos"); !v.empty())
    opcoes.limites.ulMaxElementos = static_cast<std::uint32_t>(std::stoul(v));
  if (const std::string v = Argumento(argc, argv, "--max-caracteres"); !v.empty())
    opcoes.limites.ulMaxCaracteresBstr = static_cast<std::uint32_t>(std::stoul(v));
  if (const std::string v = Argumento(argc, argv, "--max-bytes"); !v.empty())
    opcoes.limites.uiMaxBytes = std::stoull(v);
  opcoes.log = [](const std::string& linha) { std::fprintf(stderr, "servidor-teste: %s\n", linha.c_str()); };
  opcoes.pronto = [] {
    std::printf("pronto\n");
    std::fflush(stdout);
  };
  return SUCCEEDED(QVExecutaServidor(opcoes)) ? 0 : 1;
}

int Cliente(int argc, char** argv) {
  RaizDoPapel();
  QVOpcoesConexao opcoes;
  opcoes.sSocket = Argumento(argc, argv, "--socket");
  const std::optional<GUID> clsid = QVGuidParse(Argumento(argc, argv, "--classe"));
  if (!clsid) return 3;
  std::shared_ptr<CQVConexaoZelkorin> conexao;
  if (FAILED(CQVConexaoZelkorin::Conecta(opcoes, &conexao))) return 4;
  CQVComPtr<IQVUnknown> objeto;
  if (FAILED(conexao->CriaObjeto(*clsid, IID_IQVUnknown, objeto.ppv()))) return 5;
  if (FAILED(objeto->Inicializa_Padrao(QVTesteInicializaPS()))) return 6;
  std::printf("pronto\n");
  std::fflush(stdout);
  for (;;) ::pause();
}

std::int64_t AgoraMs() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

void RegistraClassesReais() {
  if (FAILED(QVRegistraClassesZelkorin())) std::abort();
}
QV_TESTE_PERSONALIDADE("zelkorin", RegistraClassesReais);

const bool g_papeis = QVTesteRegistraPapel(QVTesteExecutaPapel);

std::atomic<int> g_sockets{0};  // each server of the run on its own socket

}  // namespace

bool QVTesteRegistraPersonalidade(const char* nome, std::function<void()> registraClasses) {
  Personalidades()[nome] = std::move(registraClasses);
  return true;
}

int QVTesteExecutaPapel(int argc, char** argv) {
  if (!Argumento(argc, argv, "--servidor-teste").empty()) return Servidor(argc, argv);
  for (int i = 1; i < argc; ++i)
    if (std::strcmp(argv[i], "--cliente-teste") == 0) return Cliente(argc, argv);
  return -1;
}

CQVProcessoTeste::CQVProcessoTeste(const std::vector<std::string>& argumentos, const std::string& programa) {
  static std::atomic<int> s_n{0};
  m_sArquivoErros = QVTesteDiretorio() + "/processo-" + std::to_string(++s_n) + ".err";
  // Everything the child needs is built before the fork.
  std::vector<std::string> args{programa};
  args.insert(args.end(), argumentos.begin(), argumentos.end());
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  std::string varDir = "ZELKORIN_TESTE_DIR=" + QVTesteDiretorio();
  std::vector<char*> envp;
  for (char** e = environ; *e != nullptr; ++e)
    if (std::strncmp(*e, "ZELKORIN_TESTE_DIR=", 19) != 0) envp.push_back(*e);
  envp.push_back(varDir.data());
  envp.push_back(nullptr);
  const int erros = ::open(m_sArquivoErros.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  int saida[2];
  if (erros < 0 || ::pipe2(saida, O_CLOEXEC) != 0) std::abort();
  m_pid = ::fork();
  if (m_pid == 0) {
    ::dup2(saida[1], 1);
    ::dup2(erros, 2);
    ::execve(argv[0], argv.data(), envp.data());
    ::_exit(127);
  }
  ::close(saida[1]);
  ::close(erros);
  m_saida = saida[0];
}

CQVProcessoTeste::~CQVProcessoTeste() {
  if (m_pid > 0) {
    ::kill(m_pid, SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
  }
  if (m_saida >= 0) ::close(m_saida);
}

bool CQVProcessoTeste::EsperaLinha(const std::string& linha, int msLimite) {
  const std::int64_t fim = AgoraMs() + msLimite;
  for (;;) {
    if (m_sLido.find(linha + "\n") != std::string::npos) return true;
    const std::int64_t resta = fim - AgoraMs();
    if (resta <= 0) return false;
    pollfd p{m_saida, POLLIN, 0};
    if (::poll(&p, 1, static_cast<int>(resta)) <= 0) continue;
    char buf[512];
    const ssize_t n = ::read(m_saida, buf, sizeof buf);
    if (n <= 0) return false;  // the process ended
    m_sLido.append(buf, static_cast<std::size_t>(n));
  }
}

int CQVProcessoTeste::Termina(int sinal, int msLimite) {
  if (m_pid <= 0) return -1;
  ::kill(m_pid, sinal);
  return Espera(msLimite);
}

int CQVProcessoTeste::Espera(int msLimite) {
  if (m_pid <= 0) return -1;
  const std::int64_t fim = AgoraMs() + msLimite;
  int status = 0;
  while (::waitpid(m_pid, &status, WNOHANG) == 0) {
    if (AgoraMs() > fim) return -1;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  m_pid = -1;
  return status;
}

std::string CQVProcessoTeste::Erros() const { return QVTesteLeArquivo(m_sArquivoErros); }

CQVServidorTeste::CQVServidorTeste(const std::string& personalidade, std::vector<std::string> extras)
    : m_sSocket(QVTesteDiretorio() + "/s" + std::to_string(++g_sockets) + ".sock"),
      m_Processo([&] {
        extras.insert(extras.begin(), {"--servidor-teste", personalidade, "--socket", m_sSocket});
        return extras;
      }()),
      m_bPronto(m_Processo.EsperaLinha("pronto")) {}

void* QVTesteMemoriaCompartilhada(const std::string& nome, std::size_t tamanho) {
  static std::mutex s_mutex;
  static std::map<std::string, void*> s_mapas;
  std::lock_guard lock(s_mutex);
  if (const auto it = s_mapas.find(nome); it != s_mapas.end()) return it->second;
  const std::string caminho = QVTesteDiretorio() + "/mem-" + nome;
  const int fd = ::open(caminho.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  struct stat info {};
  if (fd < 0 || ::fstat(fd, &info) != 0) std::abort();
  if (static_cast<std::size_t>(info.st_size) < tamanho && ::ftruncate(fd, static_cast<off_t>(tamanho)) != 0)
    std::abort();
  void* p = ::mmap(nullptr, tamanho, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  ::close(fd);
  if (p == MAP_FAILED) std::abort();
  s_mapas[nome] = p;
  return p;
}

std::size_t QVTesteLinhasCom(const std::string& trecho) {
  std::size_t n = 0;
  for (const std::string& l : QVTesteLinhasErro()) n += l.find(trecho) != std::string::npos;
  return n;
}

bool QVTesteEsperaQue(const std::function<bool()>& cond, int msLimite) {
  const std::int64_t fim = AgoraMs() + msLimite;
  while (!cond()) {
    if (AgoraMs() > fim) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}
