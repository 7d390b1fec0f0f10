// A second process for the tests of what must hold between processes
// (sharing, marks): forked at construction, it answers each number the test
// sends with the number its handler returns. Construct it before the test
// opens anything: a child forked later shares the test's open files, and
// with them their locks.
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
  // Ends the child at once, without it releasing anything by itself (its
  // death closes its files); its exit status, once reaped.
  int MorreSemFechar();

 private:
  pid_t m_pid = -1;
  int m_cmd = -1;
  int m_resp = -1;
};
