// Server processes for the tests of what crosses the transport.
//
// A test binary re-runs itself as a server: "--servidor-teste NOME" makes it
// serve, on a socket in the test's directory, the classes that the
// personality NOME registers (fake servers that the test file defines and
// registers with QV_TESTE_PERSONALIDADE; "zelkorin" serves the real
// classes). The server writes its log into
// the test's directory, so the test reads the lines it expects there, and
// shares observations with the test through QVTesteMemoriaCompartilhada.
//
// "--cliente-teste --socket S --classe CLSID" makes it a client instead: it connects,
// makes and initialises one object, says "pronto" and waits to be killed.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/QVGuid.h"

// Registers a personality by name (at static initialisation).
bool QVTesteRegistraPersonalidade(const char* nome, std::function<void()> registraClasses);
#define QV_TESTE_PERSONALIDADE(nome, funcao) \
  static const bool qvPersonalidade_##funcao = QVTesteRegistraPersonalidade(nome, funcao)

// For the test main: runs the process as a server or a client when its
// arguments ask for one and gives the exit code, or -1 for a normal test run.
int QVTesteExecutaPapel(int argc, char** argv);

// A process of this binary running in another role (or of another
// program); killed (SIGKILL) and reaped when it goes, unless it was ended
// before. Its stdout is read by EsperaLinha; its stderr goes to a file.
class CQVProcessoTeste {
 public:
  explicit CQVProcessoTeste(const std::vector<std::string>& argumentos,
                            const std::string& programa = "/proc/self/exe");
  ~CQVProcessoTeste();
  CQVProcessoTeste(const CQVProcessoTeste&) = delete;
  CQVProcessoTeste& operator=(const CQVProcessoTeste&) = delete;

  // Waits (up to the time limit) for the process to write this line; false
  // when it ended or did not write it in time.
  bool EsperaLinha(const std::string& linha, int msLimite = 20000);
  // Waits for the process to end by itself: the wait status, or -1 on timeout.
  int Espera(int msLimite = 20000);
  // Sends a signal and waits for the end.
  int Termina(int sinal, int msLimite = 20000);
  pid_t Pid() const { return m_pid; }
  // What the process wrote on stderr so far.
  std::string Erros() const;

 private:
  pid_t m_pid = -1;
  int m_saida = -1;
  std::string m_sArquivoErros;
  std::string m_sLido;
};

// A server of a personality on its own socket. extras: more arguments for
// the server ("--max-elementos", "10", "--listen", "0", ...).
class CQVServidorTeste {
 public:
  explicit CQVServidorTeste(const std::string& personalidade, std::vector<std::string> extras = {});
  bool Pronto() const { return m_bPronto; }
  const std::string& Socket() const { return m_sSocket; }
  CQVProcessoTeste& Processo() { return m_Processo; }

 private:
  std::string m_sSocket;
  CQVProcessoTeste m_Processo;
  bool m_bPronto;
};

// A block of memory shared by every process of the test run (a file in the
// test's directory, mapped), zeroed when first made. The same name gives
// the same block in the test and in its servers.
void* QVTesteMemoriaCompartilhada(const std::string& nome, std::size_t tamanho);
template <class T>
T& QVTesteCompartilhado(const std::string& nome) {
  return *static_cast<T*>(QVTesteMemoriaCompartilhada(nome, sizeof(T)));
}

// How many lines of the error log, the servers' included, hold that text.
std::size_t QVTesteLinhasCom(const std::string& trecho);

// Waits until cond() holds, polling; false when the time ran out.
bool QVTesteEsperaQue(const std::function<bool()>& cond, int msLimite = 20000);
