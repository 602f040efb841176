#include "mask/value_scanner.h"

#include <algorithm>
#include <cstring>

namespace {

struct RawMatch {
  size_t from;
  size_t to;
  unsigned id;
};

// The lines that hold the end of a finder's match.
struct LineSpans {
  const char* text;
  size_t size;
  std::vector<std::pair<size_t, size_t>> spans;
};

int AddLine(unsigned, unsigned long long, unsigned long long to, unsigned, void* context) {
  LineSpans& lines = *static_cast<LineSpans*>(context);
  const size_t last = static_cast<size_t>(to) - 1;  // no value is empty
  if (!lines.spans.empty() && last >= lines.spans.back().first && last < lines.spans.back().second) return 0;
  const void* before = memrchr(lines.text, '\n', last);
  const void* after = std::memchr(lines.text + last, '\n', lines.size - last);
  const size_t from = before == nullptr ? 0 : static_cast<size_t>(static_cast<const char*>(before) - lines.text) + 1;
  const size_t end = after == nullptr ? lines.size : static_cast<size_t>(static_cast<const char*>(after) - lines.text) + 1;
  lines.spans.emplace_back(from, end);
  return 0;
}

// Ends come mostly, not strictly, in order: each line once, touching lines as one.
void MergeSpans(std::vector<std::pair<size_t, size_t>>& spans) {
  std::sort(spans.begin(), spans.end());
  size_t kept = 0;
  for (const auto& span : spans) {
    if (kept > 0 && span.first <= spans[kept - 1].second)
      spans[kept - 1].second = std::max(spans[kept - 1].second, span.second);
    else
      spans[kept++] = span;
  }
  spans.resize(kept);
}

struct RawMatches {
  std::vector<RawMatch>* raw;
  size_t offset;
};

int Collect(unsigned id, unsigned long long from, unsigned long long to, unsigned, void* context) {
  const RawMatches& matches = *static_cast<RawMatches*>(context);
  matches.raw->push_back({matches.offset + static_cast<size_t>(from), matches.offset + static_cast<size_t>(to), id});
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

std::shared_ptr<hs_database_t> CompileDatabase(const std::vector<ValuePattern>& patterns, unsigned flags,
                                               std::string& error) {
  std::vector<const char*> expressions;
  std::vector<unsigned> allFlags, ids;
  for (const ValuePattern& pattern : patterns) {
    ids.push_back(static_cast<unsigned>(expressions.size()));
    expressions.push_back(pattern.expression.c_str());
    allFlags.push_back(flags);
  }
  hs_database_t* database = nullptr;
  hs_compile_error_t* compileError = nullptr;
  if (hs_compile_multi(expressions.data(), allFlags.data(), ids.data(), static_cast<unsigned>(expressions.size()),
                       HS_MODE_BLOCK, nullptr, &database, &compileError) != HS_SUCCESS) {
    error = compileError->message;
    hs_free_compile_error(compileError);
    return nullptr;
  }
  return std::shared_ptr<hs_database_t>(database, hs_free_database);
}

}  // namespace

ValueScanner::~ValueScanner() {
  if (scratch_ != nullptr) hs_free_scratch(scratch_);
}

ValueScanner::ValueScanner(const ValueScanner& other)
    : finder_(other.finder_), exact_(other.exact_), kinds_(other.kinds_) {
  // Without scratch space every scan fails, and the member with it.
  if (other.scratch_ != nullptr && hs_clone_scratch(other.scratch_, &scratch_) != HS_SUCCESS) scratch_ = nullptr;
}

bool ValueScanner::Compile(const std::vector<ValuePattern>& patterns, std::string& error) {
  for (const ValuePattern& pattern : patterns) kinds_.push_back(pattern.kind);
  finder_ = CompileDatabase(patterns, HS_FLAG_CASELESS, error);
  if (finder_ == nullptr) return false;
  exact_ = CompileDatabase(patterns, HS_FLAG_CASELESS | HS_FLAG_SOM_LEFTMOST, error);
  return exact_ != nullptr && hs_alloc_scratch(finder_.get(), &scratch_) == HS_SUCCESS &&
         hs_alloc_scratch(exact_.get(), &scratch_) == HS_SUCCESS;
}

bool ValueScanner::Scan(const char* text, size_t size, std::vector<ValueMatch>& found) {
  static thread_local LineSpans lines;
  static thread_local std::vector<RawMatch> raw;
  lines.text = text;
  lines.size = size;
  lines.spans.clear();
  raw.clear();
  found.clear();
  if (scratch_ == nullptr) return false;
  if (hs_scan(finder_.get(), text, static_cast<unsigned>(size), 0, scratch_, AddLine, &lines) != HS_SUCCESS)
    return false;
  MergeSpans(lines.spans);
  for (const auto& [from, to] : lines.spans) {
    RawMatches matches{&raw, from};
    if (hs_scan(exact_.get(), text + from, static_cast<unsigned>(to - from), 0, scratch_, Collect, &matches) !=
        HS_SUCCESS)
      return false;
  }
  ChooseMatches(raw, kinds_, found);
  return true;
}
