#include "platform/QVSeh.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <thread>

namespace {

void* PaginaProibida() {
  static void* p = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return p;
}

}  // namespace

TEST(QVSeh, ChamadaSemFalha) {
  int x = 0;
  const QVSehFault f = QVSehRun([&] { x = 42; });
  EXPECT_EQ(f.codigo, 0u);
  EXPECT_EQ(x, 42);
}

TEST(QVSeh, AcessoInvalidoELeituraDepois) {
  const QVSehFault f = QVSehRun([] { (void)*static_cast<volatile int*>(PaginaProibida()); });
  EXPECT_EQ(f.codigo, EXCEPTION_ACCESS_VIOLATION);
  EXPECT_FALSE(f.pilha.empty());
  // The guard is usable again at once.
  EXPECT_EQ(QVSehRun([] {}).codigo, 0u);
}

#if defined(__x86_64__)
TEST(QVSeh, DivisaoInteiraPorZero) {
  const QVSehFault f = QVSehRun([] {
    int q = 0, r = 0;
    // Written in assembly: in C++ the division would be undefined behaviour
    // that the sanitizers stop before the processor faults.
    asm volatile("cltd\n\tidivl %2" : "=a"(q), "=&d"(r) : "r"(0), "a"(1));
    (void)q;
    (void)r;
  });
  EXPECT_EQ(f.codigo, EXCEPTION_INT_DIVIDE_BY_ZERO);
}

TEST(QVSeh, InstrucaoIlegal) {
  EXPECT_EQ(QVSehRun([] { asm volatile("ud2"); }).codigo, EXCEPTION_ILLEGAL_INSTRUCTION);
}
#endif

TEST(QVSeh, GuardasAninhadasEExcecoes) {
  std::uint32_t interno = 0;
  const QVSehFault externo = QVSehRun([&] {
    interno = QVSehRun([] { *static_cast<volatile int*>(PaginaProibida()) = 1; }).codigo;
  });
  EXPECT_EQ(interno, EXCEPTION_ACCESS_VIOLATION);  // the innermost guard reports it
  EXPECT_EQ(externo.codigo, 0u);
  // A language exception passes through and leaves no guard behind.
  EXPECT_THROW(QVSehRun([] { throw std::runtime_error("x"); }), std::runtime_error);
  EXPECT_EQ(QVSehRun([] { *static_cast<volatile int*>(PaginaProibida()) = 1; }).codigo, EXCEPTION_ACCESS_VIOLATION);
}

TEST(QVSeh, CadaThreadComSuaGuarda) {
  std::uint32_t codigos[2] = {};
  std::thread a([&] { codigos[0] = QVSehRun([] { *static_cast<volatile int*>(PaginaProibida()) = 1; }).codigo; });
  std::thread b([&] { codigos[1] = QVSehRun([] {}).codigo; });
  a.join();
  b.join();
  EXPECT_EQ(codigos[0], EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(codigos[1], 0u);
}

TEST(QVSeh, FalhaForaDeGuardaEncerraOProcesso) {
  QVSehRun([] {});  // handlers installed
  const pid_t filho = fork();
  ASSERT_GE(filho, 0);
  if (filho == 0) {
    *static_cast<volatile int*>(PaginaProibida()) = 1;
    _exit(0);
  }
  int status = 0;
  waitpid(filho, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGSEGV);
}
