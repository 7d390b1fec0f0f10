#include "platform/QVSeh.h"

#include <execinfo.h>
#include <pthread.h>
#include <setjmp.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <mutex>

namespace {

constexpr int kSinais[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP};
constexpr int kMaxQuadros = 64;
// How far below and above the lowest stack address a fault still counts as a
// stack overflow: the guard area below the stack, and the first frames above it.
constexpr std::uintptr_t kMargemAbaixo = std::uintptr_t{1} << 20;
constexpr std::uintptr_t kMargemAcima = std::uintptr_t{64} << 10;

struct Guarda {
  sigjmp_buf retorno;
  std::uint32_t codigo = 0;
  void* quadros[kMaxQuadros];
  int nQuadros = 0;
  Guarda* anterior = nullptr;
};

// The alternate signal stack of one thread, made at its first guard and
// released when the thread ends.
struct PilhaAlternativa {
  void* base = nullptr;
  std::size_t tamanho = 0;
  std::uintptr_t pilhaInferior = 0;  // lowest address of the thread's own stack

  void Prepara() {
    if (base != nullptr) return;
    tamanho = 256 * 1024;
    base = mmap(nullptr, tamanho, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED) {
      base = nullptr;
      return;
    }
    stack_t ss{};
    ss.ss_sp = base;
    ss.ss_size = tamanho;
    sigaltstack(&ss, nullptr);
    pthread_attr_t attr;
    if (pthread_getattr_np(pthread_self(), &attr) == 0) {
      void* endereco = nullptr;
      std::size_t tam = 0;
      pthread_attr_getstack(&attr, &endereco, &tam);
      pilhaInferior = reinterpret_cast<std::uintptr_t>(endereco);
      pthread_attr_destroy(&attr);
    }
  }

  ~PilhaAlternativa() {
    if (base == nullptr) return;
    stack_t ss{};
    ss.ss_flags = SS_DISABLE;
    sigaltstack(&ss, nullptr);
    munmap(base, tamanho);
  }
};

thread_local Guarda* t_guarda = nullptr;
thread_local PilhaAlternativa t_pilha;

bool EhEstouroDePilha(std::uintptr_t endereco) {
  const std::uintptr_t inferior = t_pilha.pilhaInferior;
  return inferior != 0 && endereco + kMargemAbaixo >= inferior && endereco < inferior + kMargemAcima;
}

std::uint32_t CodigoDoSinal(int sinal, const siginfo_t* info) {
  switch (sinal) {
    case SIGSEGV:
      return EhEstouroDePilha(reinterpret_cast<std::uintptr_t>(info->si_addr))
                 ? EXCEPTION_STACK_OVERFLOW
                 : EXCEPTION_ACCESS_VIOLATION;
    case SIGBUS:
      return info->si_code == BUS_ADRALN ? EXCEPTION_DATATYPE_MISALIGNMENT : EXCEPTION_IN_PAGE_ERROR;
    case SIGFPE:
      switch (info->si_code) {
        case FPE_INTDIV: return EXCEPTION_INT_DIVIDE_BY_ZERO;
        case FPE_INTOVF: return EXCEPTION_INT_OVERFLOW;
        case FPE_FLTDIV: return EXCEPTION_FLT_DIVIDE_BY_ZERO;
        case FPE_FLTOVF: return EXCEPTION_FLT_OVERFLOW;
        case FPE_FLTUND: return EXCEPTION_FLT_UNDERFLOW;
        case FPE_FLTRES: return EXCEPTION_FLT_INEXACT_RESULT;
        case FPE_FLTSUB: return EXCEPTION_ARRAY_BOUNDS_EXCEEDED;
        default: return EXCEPTION_FLT_INVALID_OPERATION;
      }
    case SIGILL:
      return (info->si_code == ILL_PRVOPC || info->si_code == ILL_PRVREG)
                 ? EXCEPTION_PRIV_INSTRUCTION
                 : EXCEPTION_ILLEGAL_INSTRUCTION;
    case SIGTRAP:
      return info->si_code == TRAP_TRACE ? EXCEPTION_SINGLE_STEP : EXCEPTION_BREAKPOINT;
    default:
      return EXCEPTION_NONCONTINUABLE_EXCEPTION;
  }
}

void Tratador(int sinal, siginfo_t* info, void*) {
  Guarda* guarda = t_guarda;
  // Not ours to handle: a fault outside any guard, or a signal sent by a
  // process (kill) rather than raised by the processor. Put the default
  // action back; returning re-runs the faulting instruction, which then ends
  // the process as it would have without us.
  if (guarda == nullptr || info == nullptr || info->si_code <= 0) {
    signal(sinal, SIG_DFL);
    if (info == nullptr || info->si_code <= 0) raise(sinal);
    return;
  }
  guarda->codigo = CodigoDoSinal(sinal, info);
  guarda->nQuadros = backtrace(guarda->quadros, kMaxQuadros);
  siglongjmp(guarda->retorno, 1);
}

void InstalaTratadores() {
  // backtrace loads its unwinder on first use; do it now, outside any handler.
  void* quadro[1];
  backtrace(quadro, 1);
  for (int sinal : kSinais) {
    struct sigaction sa {};
    sa.sa_sigaction = Tratador;
    // SA_NODEFER: the signal is not blocked while the handler runs, so the
    // jump back out of it leaves the thread's mask as it was and the guard
    // need not save the mask (a system call) at every guarded call.
    sa.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    sigemptyset(&sa.sa_mask);
    sigaction(sinal, &sa, nullptr);
  }
}

std::string TextoDaPilha(void* const* quadros, int n) {
  std::string texto;
  char** simbolos = backtrace_symbols(quadros, n);
  for (int i = 0; i < n; ++i) {
    texto += simbolos != nullptr ? simbolos[i] : "?";
    texto += '\n';
  }
  std::free(simbolos);
  return texto;
}

}  // namespace

QVSehFault QVSehRun(void (*fn)(void*), void* ctx) {
  static std::once_flag instalado;
  std::call_once(instalado, InstalaTratadores);
  t_pilha.Prepara();

  // volatile: these are read after a siglongjmp back into this frame.
  Guarda guarda;
  Guarda* volatile anterior = t_guarda;
  guarda.anterior = anterior;
  QVSehFault resultado;
  if (sigsetjmp(guarda.retorno, 0) == 0) {
    t_guarda = &guarda;
    try {
      fn(ctx);
    } catch (...) {
      t_guarda = anterior;  // a language exception leaves the guard too
      throw;
    }
    t_guarda = anterior;
    return resultado;
  }
  t_guarda = anterior;
  resultado.codigo = guarda.codigo;
  resultado.pilha = TextoDaPilha(guarda.quadros, guarda.nQuadros);
  return resultado;
}
