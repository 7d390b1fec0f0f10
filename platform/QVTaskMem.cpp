#include "platform/QVTaskMem.h"

#include <cstdlib>

// A request of 0 bytes still returns a distinct block, as the platform's
// allocator does; callers that hand out empty arrays send null instead.
void* CoTaskMemAlloc(std::size_t cb) { return std::malloc(cb == 0 ? 1 : cb); }

void* CoTaskMemRealloc(void* pv, std::size_t cb) { return std::realloc(pv, cb == 0 ? 1 : cb); }

void CoTaskMemFree(void* pv) { std::free(pv); }
