// The masker's scanner on any text: every match lies inside the text, in
// order and apart, and the text scanned a line at a time gives the same
// matches; reading only the lines that hold a value rests on that.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "mask/value_patterns.h"
#include "mask/value_scanner.h"

namespace {

ValueScanner& Scanner() {
  static ValueScanner* scanner = [] {
    auto* compiled = new ValueScanner;
    const LocalValues values{{"demo-host", "broker.corp.example"}, {"jdoe", "Jane Doe"}, {"Falcon7"}, "/home/jdoe"};
    std::string error;
    FUZZ_CHECK(compiled->Compile(BuildValuePatterns(values), error));
    return compiled;
  }();
  return *scanner;
}

std::vector<ValueMatch> ByLine(const char* text, size_t size) {
  std::vector<ValueMatch> all, line;
  for (size_t from = 0; from < size;) {
    const void* lineEnd = std::memchr(text + from, '\n', size - from);
    const size_t to = lineEnd == nullptr ? size : static_cast<size_t>(static_cast<const char*>(lineEnd) - text) + 1;
    FUZZ_CHECK(Scanner().Scan(text + from, to - from, line));
    for (const ValueMatch& match : line) all.push_back({match.from + from, match.to + from, match.kind});
    from = to;
  }
  return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const char* text = reinterpret_cast<const char*>(data);
  std::vector<ValueMatch> whole;
  FUZZ_CHECK(Scanner().Scan(text, size, whole));
  size_t end = 0;
  for (const ValueMatch& match : whole) {
    FUZZ_CHECK(match.from >= end && match.from < match.to && match.to <= size);
    end = match.to;
  }
  const std::vector<ValueMatch> lines = ByLine(text, size);
  FUZZ_CHECK(lines.size() == whole.size());
  for (size_t i = 0; i < whole.size(); ++i)
    FUZZ_CHECK(lines[i].from == whole[i].from && lines[i].to == whole[i].to && lines[i].kind == whole[i].kind);
  return 0;
}
