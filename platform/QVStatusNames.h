// Names and texts of the platform's own statuses, Win32 error numbers and
// facilities, for the error log and the clients' error records. Texts are in
// the suite's language (Portuguese, UTF-8).
#pragma once

#include <cstdint>

#include "platform/QVHResult.h"

struct QVPlatformStatus {
  HRESULT hr;
  const char* name;  // "E_UNEXPECTED"
  const char* text;
};

struct QVPlatformError {
  std::uint32_t code;
  const char* name;  // "ERROR_FILE_NOT_FOUND"
  const char* text;
};

// Null when unknown.
const QVPlatformStatus* QVPlatformStatusLookup(HRESULT hr);
const QVPlatformError* QVPlatformErrorLookup(std::uint32_t code);
const char* QVPlatformFacilityName(int facility);
