#pragma once
// Narrows a root process to the two file-access capabilities it needs.
#include <cstddef>

int ReduceCapabilities();
void SecureZero(void* buffer, size_t length);
