#pragma once
// Finds the values of every pattern in a piece of text in one pass
// (Hyperscan, block mode): the leftmost match wins, then the longest, then
// the pattern listed first, and matches never overlap.
#include <hs/hs.h>

#include <cstddef>
#include <string>
#include <vector>

#include "mask/value_patterns.h"

struct ValueMatch {
  size_t from;
  size_t to;
  ValueKind kind;
};

class ValueScanner {
 public:
  ValueScanner() = default;
  ~ValueScanner();
  ValueScanner(const ValueScanner&) = delete;
  ValueScanner& operator=(const ValueScanner&) = delete;

  // False, with the engine's message in error, when a pattern is refused.
  bool Compile(const std::vector<ValuePattern>& patterns, std::string& error);
  // The matches in text, in order; found is reused between calls.
  bool Scan(const char* text, size_t size, std::vector<ValueMatch>& found);

 private:
  hs_database_t* database_ = nullptr;
  hs_scratch_t* scratch_ = nullptr;
  std::vector<ValueKind> kinds_;
};
