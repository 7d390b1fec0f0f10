// Status codes in the form the suite's object platform uses (HRESULT).
//
// Bit layout of a status (32 bits, signed):
//   bit 31      severity: 1 = failure (the value is negative)
//   bits 16..28 facility (13 bits)
//   bits 0..15  code
// Every routine of the system returns one of these; negative means failure.
#pragma once

#include <cstdint>

using HRESULT = std::int32_t;

// Builds a status from its unsigned spelling, as the platform headers write
// them (0x80004005 does not fit a signed literal).
constexpr HRESULT QVHr(std::uint32_t u) { return static_cast<HRESULT>(u); }

constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
constexpr bool FAILED(HRESULT hr) { return hr < 0; }

// A Win32 error number in status form: 0x80070000 | low 16 bits when
// positive; zero and negative values pass unchanged.
constexpr HRESULT HRESULT_FROM_WIN32(std::int64_t err) {
  return err <= 0 ? static_cast<HRESULT>(err)
                  : QVHr(0x80070000u | (static_cast<std::uint32_t>(err) & 0xFFFFu));
}

constexpr int HRESULT_SEVERITY(HRESULT hr) { return (static_cast<std::uint32_t>(hr) >> 31) & 1; }
constexpr int HRESULT_FACILITY(HRESULT hr) { return (static_cast<std::uint32_t>(hr) >> 16) & 0x1FFF; }
constexpr int HRESULT_CODE(HRESULT hr) { return static_cast<std::uint32_t>(hr) & 0xFFFF; }
constexpr HRESULT MAKE_HRESULT(int sev, int fac, int code) {
  return QVHr((static_cast<std::uint32_t>(sev) << 31) | (static_cast<std::uint32_t>(fac) << 16) |
              static_cast<std::uint32_t>(code));
}

constexpr int SEVERITY_SUCCESS = 0;
constexpr int SEVERITY_ERROR = 1;

constexpr int FACILITY_NULL = 0;
constexpr int FACILITY_RPC = 1;
constexpr int FACILITY_DISPATCH = 2;
constexpr int FACILITY_STORAGE = 3;
constexpr int FACILITY_ITF = 4;
constexpr int FACILITY_WIN32 = 7;
constexpr int FACILITY_WINDOWS = 8;

// Standard statuses the system returns or meets.
constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_UNEXPECTED = QVHr(0x8000FFFFu);
constexpr HRESULT E_NOTIMPL = QVHr(0x80004001u);
constexpr HRESULT E_NOINTERFACE = QVHr(0x80004002u);
constexpr HRESULT E_POINTER = QVHr(0x80004003u);
constexpr HRESULT E_ABORT = QVHr(0x80004004u);
constexpr HRESULT E_FAIL = QVHr(0x80004005u);
constexpr HRESULT E_ACCESSDENIED = QVHr(0x80070005u);
constexpr HRESULT E_HANDLE = QVHr(0x80070006u);
constexpr HRESULT E_OUTOFMEMORY = QVHr(0x8007000Eu);
constexpr HRESULT E_INVALIDARG = QVHr(0x80070057u);
constexpr HRESULT CLASS_E_NOAGGREGATION = QVHr(0x80040110u);
constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = QVHr(0x80040111u);
constexpr HRESULT REGDB_E_CLASSNOTREG = QVHr(0x80040154u);
constexpr HRESULT CO_E_SERVER_EXEC_FAILURE = QVHr(0x80080005u);
constexpr HRESULT RPC_E_DISCONNECTED = QVHr(0x80010108u);
constexpr HRESULT RPC_E_SERVERFAULT = QVHr(0x80010105u);
constexpr HRESULT RPC_E_TIMEOUT = QVHr(0x8001011Fu);
constexpr HRESULT RPC_X_BAD_STUB_DATA = QVHr(0x800706F7u);
constexpr HRESULT DISP_E_OVERFLOW = QVHr(0x8002000Au);
constexpr HRESULT DISP_E_TYPEMISMATCH = QVHr(0x80020005u);

// Win32 error numbers the platform layer produces.
constexpr std::uint32_t ERROR_SUCCESS = 0;
constexpr std::uint32_t ERROR_INVALID_FUNCTION = 1;
constexpr std::uint32_t ERROR_FILE_NOT_FOUND = 2;
constexpr std::uint32_t ERROR_PATH_NOT_FOUND = 3;
constexpr std::uint32_t ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr std::uint32_t ERROR_ACCESS_DENIED = 5;
constexpr std::uint32_t ERROR_INVALID_HANDLE = 6;
constexpr std::uint32_t ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr std::uint32_t ERROR_INVALID_DATA = 13;
constexpr std::uint32_t ERROR_OUTOFMEMORY = 14;
constexpr std::uint32_t ERROR_NOT_SAME_DEVICE = 17;
constexpr std::uint32_t ERROR_WRITE_PROTECT = 19;
constexpr std::uint32_t ERROR_SEEK = 25;
constexpr std::uint32_t ERROR_WRITE_FAULT = 29;
constexpr std::uint32_t ERROR_READ_FAULT = 30;
constexpr std::uint32_t ERROR_GEN_FAILURE = 31;
constexpr std::uint32_t ERROR_SHARING_VIOLATION = 32;
constexpr std::uint32_t ERROR_LOCK_VIOLATION = 33;
constexpr std::uint32_t ERROR_HANDLE_EOF = 38;
constexpr std::uint32_t ERROR_HANDLE_DISK_FULL = 39;
constexpr std::uint32_t ERROR_NOT_SUPPORTED = 50;
constexpr std::uint32_t ERROR_FILE_EXISTS = 80;
constexpr std::uint32_t ERROR_INVALID_PARAMETER = 87;
constexpr std::uint32_t ERROR_BROKEN_PIPE = 109;
constexpr std::uint32_t ERROR_DISK_FULL = 112;
constexpr std::uint32_t ERROR_INSUFFICIENT_BUFFER = 122;
constexpr std::uint32_t ERROR_INVALID_NAME = 123;
constexpr std::uint32_t ERROR_NEGATIVE_SEEK = 131;
constexpr std::uint32_t ERROR_DIR_NOT_EMPTY = 145;
constexpr std::uint32_t ERROR_ALREADY_EXISTS = 183;
constexpr std::uint32_t ERROR_FILENAME_EXCED_RANGE = 206;
constexpr std::uint32_t ERROR_DIRECTORY = 267;
constexpr std::uint32_t ERROR_TIMEOUT = 1460;
constexpr std::uint32_t ERROR_FILE_READ_ONLY = 6009;
// The transport's: no server answers at the address, or it has no room for
// another client; a method number the object does not have; the address is
// taken, is not one of this machine's, names no known host.
constexpr std::uint32_t RPC_S_SERVER_UNAVAILABLE = 1722;
constexpr std::uint32_t RPC_S_SERVER_TOO_BUSY = 1723;
constexpr std::uint32_t RPC_S_PROCNUM_OUT_OF_RANGE = 1745;
constexpr std::uint32_t WSAEADDRINUSE = 10048;
constexpr std::uint32_t WSAEADDRNOTAVAIL = 10049;
constexpr std::uint32_t WSAHOST_NOT_FOUND = 11001;
