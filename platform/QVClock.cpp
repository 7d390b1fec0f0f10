#include "platform/QVClock.h"

#include <sched.h>
#include <time.h>

#include <atomic>
#include <cerrno>
#include <mutex>

namespace {
std::mutex g_fixoMutex;
bool g_fixo = false;
SYSTEMTIME g_horaFixa{};
}  // namespace

void Sleep(std::uint32_t ms) {
  if (ms == 0) {
    sched_yield();
    return;
  }
  timespec ts{static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000) * 1000000L};
  while (nanosleep(&ts, &ts) != 0 && errno == EINTR) {
  }
}

std::int64_t QVSteadyTicks100ns() {
  timespec ts{};
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return static_cast<std::int64_t>(ts.tv_sec) * 10000000 + ts.tv_nsec / 100;
}

std::uint64_t GetTickCount64() {
  return static_cast<std::uint64_t>(QVSteadyTicks100ns() / 10000);
}

void GetLocalTime(SYSTEMTIME* pst) {
  {
    std::lock_guard lock(g_fixoMutex);
    if (g_fixo) {
      *pst = g_horaFixa;
      return;
    }
  }
  timespec ts{};
  clock_gettime(CLOCK_REALTIME, &ts);
  tm local{};
  localtime_r(&ts.tv_sec, &local);
  pst->wYear = static_cast<std::uint16_t>(local.tm_year + 1900);
  pst->wMonth = static_cast<std::uint16_t>(local.tm_mon + 1);
  pst->wDayOfWeek = static_cast<std::uint16_t>(local.tm_wday);
  pst->wDay = static_cast<std::uint16_t>(local.tm_mday);
  pst->wHour = static_cast<std::uint16_t>(local.tm_hour);
  pst->wMinute = static_cast<std::uint16_t>(local.tm_min);
  pst->wSecond = static_cast<std::uint16_t>(local.tm_sec > 59 ? 59 : local.tm_sec);
  pst->wMilliseconds = static_cast<std::uint16_t>(ts.tv_nsec / 1000000);
}

void QVClockFixLocalTime(const SYSTEMTIME* pst) {
  std::lock_guard lock(g_fixoMutex);
  g_fixo = pst != nullptr;
  if (pst != nullptr) g_horaFixa = *pst;
}
