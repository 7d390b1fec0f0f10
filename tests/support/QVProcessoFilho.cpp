#include "tests/support/QVProcessoFilho.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace {
// Asks the child to _exit at once.
constexpr std::int32_t kMorre = INT32_MIN;
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
    std::int32_t pedido = 0;
    while (::read(cmd[0], &pedido, sizeof pedido) == sizeof pedido && pedido != kMorre) {
      const std::int32_t r = atende(pedido);
      if (::write(resp[1], &r, sizeof r) != sizeof r) ::_exit(2);
    }
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

std::int32_t CQVProcessoFilho::Pede(std::int32_t pedido) {
  std::int32_t r = -1;
  if (::write(m_cmd, &pedido, sizeof pedido) != sizeof pedido || ::read(m_resp, &r, sizeof r) != sizeof r) return -1;
  return r;
}

int CQVProcessoFilho::MorreSemFechar() {
  const std::int32_t pedido = kMorre;
  int status = -1;
  if (::write(m_cmd, &pedido, sizeof pedido) == sizeof pedido) ::waitpid(m_pid, &status, 0);
  m_pid = -1;
  return status;
}
