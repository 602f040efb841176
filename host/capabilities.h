#pragma once
// Narrows a root process to the two file-access capabilities it needs.
#include <cstddef>

int ReduceCapabilities();
// Clears a buffer byte by byte with stores the compiler may not drop, for
// secrets that are about to be freed; a null buffer is left alone.
void SecureZero(void* buffer, size_t length);
