#pragma once
// A broken property is a crash for libFuzzer: report it and abort so that
// the input is kept as a reproducer.
#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(condition)                                                          \
  do {                                                                                 \
    if (!(condition)) {                                                                \
      std::fprintf(stderr, "%s:%d: property broken: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                    \
    }                                                                                  \
  } while (0)
