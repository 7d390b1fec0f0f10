#include "tests/support/QVProcessoFilho.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace {
// Asks the child to _exit at once.
constexpr std::int32_t kMorre = INT32_MIN;
// The child's end of the answers (Publica).
int g_respostaFilho = -1;
}  // namespace

CQVProcessoFilho::CQVProcessoFilho(Atende atende) {
  int cmd[2];
  int resp[2];
  if (::pipe(cmd) != 0 || ::pipe(resp) != 0) std::abort();
  m_pid = ::fork();
  if (m_pid == 0) {
    // The child must not hold the command pipe's writing end: its reads
    // would never see the end when the test closes it.
    ::close(cmd[1]);
    ::close(resp[0]);
    g_respostaFilho = resp[1];
    std::int32_t pedido = 0;
    while (::read(cmd[0], &pedido, sizeof pedido) == sizeof pedido && pedido != kMorre) Publica(atende(pedido));
    ::_exit(0);
  }
  ::close(cmd[0]);
  ::close(resp[1]);
  m_cmd = cmd[1];
  m_resp = resp[0];
}

CQVProcessoFilho::~CQVProcessoFilho() {
  ::close(m_cmd);
  ::close(m_resp);
  if (m_pid > 0) ::waitpid(m_pid, nullptr, 0);
}

void CQVProcessoFilho::Publica(std::int32_t n) {
  if (::write(g_respostaFilho, &n, sizeof n) != sizeof n) ::_exit(2);
}

bool CQVProcessoFilho::Envia(std::int32_t pedido) {
  return ::write(m_cmd, &pedido, sizeof pedido) == sizeof pedido;
}

std::int32_t CQVProcessoFilho::Resposta() {
  std::int32_t r = -1;
  return ::read(m_resp, &r, sizeof r) == sizeof r ? r : -1;
}

std::int32_t CQVProcessoFilho::Pede(std::int32_t pedido) { return Envia(pedido) ? Resposta() : -1; }

int CQVProcessoFilho::MorreSemFechar() {
  int status = -1;
  if (Envia(kMorre)) ::waitpid(m_pid, &status, 0);
  m_pid = -1;
  return status;
}

void CQVProcessoFilho::Mata() {
  if (m_pid <= 0) return;
  ::kill(m_pid, SIGKILL);
  ::waitpid(m_pid, nullptr, 0);
  m_pid = -1;
}
