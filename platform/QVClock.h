// Clocks and waiting.
#pragma once

#include <cstdint>

// Broken-down local time, as the platform reports it.
struct SYSTEMTIME {
  std::uint16_t wYear;
  std::uint16_t wMonth;  // 1..12
  std::uint16_t wDayOfWeek;  // 0 = Sunday
  std::uint16_t wDay;  // 1..31
  std::uint16_t wHour;
  std::uint16_t wMinute;
  std::uint16_t wSecond;
  std::uint16_t wMilliseconds;
};

// Sleeps for ms milliseconds; Sleep(0) yields the processor once.
void Sleep(std::uint32_t ms);
// Monotonic time in 100-nanosecond ticks (never goes back, unrelated to the date).
std::int64_t QVSteadyTicks100ns();
// Monotonic time in milliseconds.
std::uint64_t GetTickCount64();
// The current local date and time.
void GetLocalTime(SYSTEMTIME* pst);

// Tests fix the local time (month files, day keys); null releases it.
void QVClockFixLocalTime(const SYSTEMTIME* pst);
