// What the program knows about the machine and the process it runs in.
#pragma once

#include <cstdint>
#include <string>

// The computer's name as the platform's network name: the host name up to
// its first '.', in upper case, at most 15 characters. On success copies it
// with its terminator and sets *pnSize to its length; when the buffer is too
// small sets *pnSize to the length needed plus one and returns false.
bool GetComputerNameA(char* buffer, std::uint32_t* pnSize);
std::string QVComputerName();

std::string QVProcessName();  // the running program's file name
std::string QVLocalUserName();  // the operating-system account of the process
std::string QVOsVersion();  // kernel name and release, e.g. "Linux 6.1.0"
std::uint32_t QVCurrentThreadId();
std::uint32_t QVCurrentProcessId();

struct QVMemoryCounters {
  std::int64_t privateBytes;  // anonymous memory of this process
  std::int64_t availablePhysical;
  std::int64_t totalPhysical;
};
QVMemoryCounters QVReadMemoryCounters();

// Message boxes: a server has no desktop. The text goes to standard error
// and the box answers IDOK, as an unattended session would.
constexpr int IDOK = 1;
constexpr unsigned MB_OK = 0x0;
constexpr unsigned MB_ICONHAND = 0x10;
constexpr unsigned MB_ICONQUESTION = 0x20;
constexpr unsigned MB_ICONEXCLAMATION = 0x30;
constexpr unsigned MB_ICONASTERISK = 0x40;
int MessageBoxA(void* hwndOwner, const char* texto, const char* titulo, unsigned tipo);
