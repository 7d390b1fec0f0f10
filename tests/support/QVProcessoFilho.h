// A second process for the tests of what must hold between processes
// (sharing, marks, crashes): forked at construction, it answers each number
// the test sends with the number its handler returns. Construct it before
// the test opens anything: a child forked later shares the test's open
// files, and with them their locks.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>

class CQVProcessoFilho {
 public:
  using Atende = std::function<std::int32_t(std::int32_t pedido)>;
  explicit CQVProcessoFilho(Atende atende);
  // Ends the child (letting it release what it holds) and reaps it.
  ~CQVProcessoFilho();
  CQVProcessoFilho(const CQVProcessoFilho&) = delete;
  CQVProcessoFilho& operator=(const CQVProcessoFilho&) = delete;

  // The child's answer; -1 when it is gone.
  std::int32_t Pede(std::int32_t pedido);
  // The two halves of Pede, for a test that works while the child does.
  bool Envia(std::int32_t pedido);
  std::int32_t Resposta();
  // Ends the child at once, without it releasing anything by itself (its
  // death closes its files); its exit status, once reaped.
  int MorreSemFechar();
  // Kills the child where it stands (SIGKILL) and reaps it. Whatever it had
  // answered or published is still there for Resposta.
  void Mata();

  // In the child, from a handler: sends a number to the test now (read with
  // Resposta), besides the handler's answer.
  static void Publica(std::int32_t n);

 private:
  pid_t m_pid = -1;
  int m_cmd = -1;
  int m_resp = -1;
};
