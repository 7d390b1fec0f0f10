// Structured exceptions: processor faults raised inside a guarded call.
//
// On the original platform a fault inside a call (invalid memory access,
// division by zero, stack overflow...) is an exception the caller can catch
// and survive. Here the guard installs signal handlers (on an alternate
// signal stack, so that a stack overflow can be handled too); a fault inside
// QVSehRun jumps back to the guard, which reports the platform's exception
// code for it. The process lives on. Faults outside any guard keep their
// default action (the process ends).
//
// What a jump back skips: destructors of the frames between the guard and
// the fault do not run (memory they own leaks, locks they hold stay held).
// The caller must treat what the guarded call was working on as dead; the
// call frame does exactly that by discarding its server object.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

// Exception codes of the platform, as the guard reports them.
constexpr std::uint32_t EXCEPTION_GUARD_PAGE = 0x80000001u;
constexpr std::uint32_t EXCEPTION_DATATYPE_MISALIGNMENT = 0x80000002u;
constexpr std::uint32_t EXCEPTION_BREAKPOINT = 0x80000003u;
constexpr std::uint32_t EXCEPTION_SINGLE_STEP = 0x80000004u;
constexpr std::uint32_t EXCEPTION_ACCESS_VIOLATION = 0xC0000005u;
constexpr std::uint32_t EXCEPTION_IN_PAGE_ERROR = 0xC0000006u;
constexpr std::uint32_t EXCEPTION_INVALID_HANDLE = 0xC0000008u;
constexpr std::uint32_t EXCEPTION_ILLEGAL_INSTRUCTION = 0xC000001Du;
constexpr std::uint32_t EXCEPTION_NONCONTINUABLE_EXCEPTION = 0xC0000025u;
constexpr std::uint32_t EXCEPTION_INVALID_DISPOSITION = 0xC0000026u;
constexpr std::uint32_t EXCEPTION_ARRAY_BOUNDS_EXCEEDED = 0xC000008Cu;
constexpr std::uint32_t EXCEPTION_FLT_DENORMAL_OPERAND = 0xC000008Du;
constexpr std::uint32_t EXCEPTION_FLT_DIVIDE_BY_ZERO = 0xC000008Eu;
constexpr std::uint32_t EXCEPTION_FLT_INEXACT_RESULT = 0xC000008Fu;
constexpr std::uint32_t EXCEPTION_FLT_INVALID_OPERATION = 0xC0000090u;
constexpr std::uint32_t EXCEPTION_FLT_OVERFLOW = 0xC0000091u;
constexpr std::uint32_t EXCEPTION_FLT_STACK_CHECK = 0xC0000092u;
constexpr std::uint32_t EXCEPTION_FLT_UNDERFLOW = 0xC0000093u;
constexpr std::uint32_t EXCEPTION_INT_DIVIDE_BY_ZERO = 0xC0000094u;
constexpr std::uint32_t EXCEPTION_INT_OVERFLOW = 0xC0000095u;
constexpr std::uint32_t EXCEPTION_PRIV_INSTRUCTION = 0xC0000096u;
constexpr std::uint32_t EXCEPTION_STACK_OVERFLOW = 0xC00000FDu;

struct QVSehFault {
  std::uint32_t codigo = 0;  // 0: the call ended without a fault
  std::string pilha;  // the stack of the faulting thread, one frame per line
};

// Runs fn(ctx) under the guard. Guards nest; a fault is reported by the
// innermost guard of the faulting thread.
QVSehFault QVSehRun(void (*fn)(void*), void* ctx);

template <class F>
QVSehFault QVSehRun(F&& f) {
  return QVSehRun([](void* p) { (*static_cast<std::remove_reference_t<F>*>(p))(); },
                  const_cast<void*>(static_cast<const void*>(&f)));
}
