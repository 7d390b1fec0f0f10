// The task allocator: every array handed to a client is allocated here and
// freed by the client with CoTaskMemFree.
#pragma once

#include <cstddef>

void* CoTaskMemAlloc(std::size_t cb);
void* CoTaskMemRealloc(void* pv, std::size_t cb);
void CoTaskMemFree(void* pv);
