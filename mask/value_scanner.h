#pragma once
// Finds the values of every pattern in a piece of text (Hyperscan, block
// mode): the leftmost match wins, then the longest, then the pattern listed
// first, and matches never overlap.
#include <hs/hs.h>

#include <cstddef>
#include <memory>
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
  // The same patterns with scratch space of its own, for another thread.
  ValueScanner(const ValueScanner& other);
  ValueScanner& operator=(const ValueScanner&) = delete;

  // False, with the engine's message in error, when a pattern is refused.
  bool Compile(const std::vector<ValuePattern>& patterns, std::string& error);
  // The matches in text, in order; found is reused between calls.
  bool Scan(const char* text, size_t size, std::vector<ValueMatch>& found);

 private:
  // Finding where a match starts costs Hyperscan twice the time, and values
  // are few: the finder only tells which lines hold one, and the exact
  // database, which does find starts, reads only those lines.
  std::shared_ptr<hs_database_t> finder_;
  std::shared_ptr<hs_database_t> exact_;
  hs_scratch_t* scratch_ = nullptr;  // serves both databases
  std::vector<ValueKind> kinds_;
};
