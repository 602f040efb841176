#pragma once
// write(2) until every byte is out, across short writes and signals.
#include <cstddef>

bool WriteAll(int fd, const char* data, size_t size);
