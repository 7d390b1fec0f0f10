#include "platform/QVSeh.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <csignal>
#include <stdexcept>
#include <thread>

namespace {

volatile int* PaginaProibida() {
  static void* p = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return static_cast<volatile int*>(p);
}

void Escreve() { *PaginaProibida() = 1; }

#if defined(__x86_64__)
// In assembly: in C++ the division would be undefined behaviour that the
// sanitizers stop before the processor faults.
void DivideInteiroPorZero() {
  int q = 0, r = 0;
  asm volatile("cltd\n\tidivl %2" : "=a"(q), "=&d"(r) : "r"(0), "a"(1));
}
#endif

}  // namespace

// Each fault one after the other, each under a fresh guard: the code it
// raises and the faulting thread's stack; a guard that caught one is usable
// again at once; a call without a fault runs to its end and reports nothing.
TEST(QVSeh, CadaFalhaComSeuCodigo) {
  static int executou = 0;
  const std::pair<void (*)(), std::uint32_t> casos[] = {
      {[] { executou = 42; }, 0},
      {[] { (void)*PaginaProibida(); }, EXCEPTION_ACCESS_VIOLATION},
      {Escreve, EXCEPTION_ACCESS_VIOLATION},
#if defined(__x86_64__)
      {DivideInteiroPorZero, EXCEPTION_INT_DIVIDE_BY_ZERO},
      {[] { asm volatile("ud2"); }, EXCEPTION_ILLEGAL_INSTRUCTION},
#endif
      {[] {}, 0}};
  for (std::size_t i = 0; i < std::size(casos); ++i) {
    SCOPED_TRACE(i);
    const QVSehFault f = QVSehRun(casos[i].first);
    EXPECT_EQ(f.codigo, casos[i].second);
    EXPECT_EQ(f.pilha.empty(), casos[i].second == 0);
  }
  EXPECT_EQ(executou, 42);
}

// Guards nest: the innermost reports a fault; a language exception passes
// through; once an inner guard has ended either way, the outer one guards
// again (a fault it missed would end the test process). Each thread has its
// own guard.
TEST(QVSeh, GuardasAninhadasExcecoesEThreads) {
  std::uint32_t interno = 0;
  const auto aninhadas = [&] {
    interno = QVSehRun(&Escreve).codigo;
    EXPECT_THROW(QVSehRun([] { throw std::runtime_error("x"); }), std::runtime_error);
    Escreve();
  };
  EXPECT_EQ(QVSehRun(aninhadas).codigo, EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(interno, EXCEPTION_ACCESS_VIOLATION);

  std::uint32_t codigos[2] = {1, 1};
  std::thread a([&] { codigos[0] = QVSehRun(&Escreve).codigo; }), b([&] { codigos[1] = QVSehRun([] {}).codigo; });
  a.join();
  b.join();
  EXPECT_EQ(codigos[0], EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(codigos[1], 0u);
}

TEST(QVSeh, FalhaForaDeGuardaEncerraOProcesso) {
  QVSehRun([] {});  // handlers installed
  EXPECT_EXIT(Escreve(), ::testing::KilledBySignal(SIGSEGV), "");
}
