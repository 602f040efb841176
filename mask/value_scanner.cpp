#include "mask/value_scanner.h"

#include <algorithm>

namespace {

struct RawMatch {
  size_t from;
  size_t to;
  unsigned id;
};

int Collect(unsigned id, unsigned long long from, unsigned long long to, unsigned, void* context) {
  static_cast<std::vector<RawMatch>*>(context)->push_back({static_cast<size_t>(from), static_cast<size_t>(to), id});
  return 0;
}

// Hyperscan reports every end of every match: keep the leftmost, then the
// longest, then the earliest pattern, and drop what overlaps a kept one.
void ChooseMatches(std::vector<RawMatch>& raw, const std::vector<ValueKind>& kinds, std::vector<ValueMatch>& found) {
  std::sort(raw.begin(), raw.end(), [](const RawMatch& a, const RawMatch& b) {
    if (a.from != b.from) return a.from < b.from;
    if (a.to != b.to) return a.to > b.to;
    return a.id < b.id;
  });
  size_t end = 0;
  for (const RawMatch& match : raw) {
    if (match.from < end || match.to == match.from) continue;
    found.push_back({match.from, match.to, kinds[match.id]});
    end = match.to;
  }
}

}  // namespace

ValueScanner::~ValueScanner() {
  if (scratch_ != nullptr) hs_free_scratch(scratch_);
  if (database_ != nullptr) hs_free_database(database_);
}

bool ValueScanner::Compile(const std::vector<ValuePattern>& patterns, std::string& error) {
  std::vector<const char*> expressions;
  std::vector<unsigned> flags, ids;
  for (const ValuePattern& pattern : patterns) {
    expressions.push_back(pattern.expression.c_str());
    flags.push_back(HS_FLAG_CASELESS | HS_FLAG_SOM_LEFTMOST);
    ids.push_back(static_cast<unsigned>(kinds_.size()));
    kinds_.push_back(pattern.kind);
  }
  hs_compile_error_t* compileError = nullptr;
  if (hs_compile_multi(expressions.data(), flags.data(), ids.data(), static_cast<unsigned>(expressions.size()),
                       HS_MODE_BLOCK, nullptr, &database_, &compileError) != HS_SUCCESS) {
    error = compileError->message;
    hs_free_compile_error(compileError);
    return false;
  }
  return hs_alloc_scratch(database_, &scratch_) == HS_SUCCESS;
}

bool ValueScanner::Scan(const char* text, size_t size, std::vector<ValueMatch>& found) {
  static thread_local std::vector<RawMatch> raw;
  raw.clear();
  found.clear();
  if (hs_scan(database_, text, static_cast<unsigned>(size), 0, scratch_, Collect, &raw) != HS_SUCCESS) return false;
  ChooseMatches(raw, kinds_, found);
  return true;
}
