// The masker's matching engine, chosen by this measurement: the same value
// patterns over the same generated client log, Hyperscan (the masker's own
// scanner) against RE2 (one alternation of the patterns, each in its own
// group). Also prints MB/s per core of each.
#include <benchmark/benchmark.h>
#include <re2/re2.h>

#include <cstdio>
#include <string>
#include <vector>

#include "mask/stream_masker.h"
#include "mask/value_scanner.h"
#include "pairs.h"

namespace {

constexpr size_t kLogBytes = 32u << 20;

LocalValues Values() {
  return {{"demo-host", "demo-host.corp.example", "broker.norvex.example"}, {"jdoe", "Jane Doe"}, {"Falcon7"},
          "/home/jdoe"};
}

// Client lines; one in eight names a host, an address or the user, as a connect or an error does.
const std::string& Log() {
  static const std::string log = [] {
    std::string text;
    static const char* kLevels[] = {"INFO", "DEBUG", "VERBOSE", "WARN"};
    for (unsigned n = 0; text.size() < kLogBytes; ++n) {
      char line[320];
      int length = std::snprintf(line, sizeof line,
                                 "2024-05-%02u %02u:%02u:%02u.%03u [%s] ORBClient[%u]: session %u frame %u "
                                 "latency %ums codec h264 queue %u\n",
                                 1 + n % 28, n % 24, n % 60, (n * 7) % 60, n % 1000, kLevels[n % 4], 4000 + n % 97,
                                 n % 13, n * 31 % 100003, n % 250, n % 17);
      if (n % 8 == 0)
        length = std::snprintf(line, sizeof line,
                               "2024-05-%02u %02u:%02u:%02u.%03u [INFO] connect to vdi-%02u.norvex.example "
                               "(192.168.%u.%u, fe80::%x:1) for jdoe from /home/jdoe/.ORBClient mac "
                               "3c:52:82:aa:01:%02x\n",
                               1 + n % 28, n % 24, n % 60, (n * 7) % 60, n % 1000, n % 40, n % 7, n % 250, n % 4096,
                               n % 256);
      text.append(line, static_cast<size_t>(length));
    }
    return text;
  }();
  return log;
}

// The log in the masker's pieces: a value never crosses one.
template <typename ScanPiece>
size_t ScanInPieces(ScanPiece scan) {
  const std::string& log = Log();
  size_t found = 0;
  for (size_t at = 0; at < log.size();) {
    size_t end = std::min(log.size(), at + kMaskBufferBytes);
    if (end < log.size()) end = log.rfind('\n', end - 1) + 1;
    found += scan(log.data() + at, end - at);
    at = end;
  }
  return found;
}

void BM_Hyperscan(benchmark::State& state) {
  ValueScanner scanner;
  std::string error;
  if (!scanner.Compile(BuildValuePatterns(Values()), error)) state.SkipWithError(error.c_str());
  std::vector<ValueMatch> found;
  for (auto _ : state)
    benchmark::DoNotOptimize(ScanInPieces([&](const char* text, size_t size) {
      scanner.Scan(text, size, found);
      return found.size();
    }));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Log().size()));
}

void BM_Re2(benchmark::State& state) {
  std::string alternation = "(?i)";
  for (const ValuePattern& pattern : BuildValuePatterns(Values()))
    alternation += (alternation.size() > 4 ? "|(" : "(") + pattern.expression + ")";
  RE2::Options options;
  options.set_max_mem(256 << 20);
  const RE2 re(alternation, options);
  if (!re.ok()) state.SkipWithError(re.error().c_str());
  std::vector<re2::StringPiece> groups(static_cast<size_t>(re.NumberOfCapturingGroups()) + 1);
  for (auto _ : state)
    benchmark::DoNotOptimize(ScanInPieces([&](const char* text, size_t size) {
      const re2::StringPiece piece(text, size);
      size_t found = 0;
      for (size_t at = 0; re.Match(piece, at, size, RE2::UNANCHORED, groups.data(), static_cast<int>(groups.size()));
           ++found)
        at = static_cast<size_t>(groups[0].end() - text) + (groups[0].empty() ? 1 : 0);
      return found;
    }));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Log().size()));
}

BENCHMARK(BM_Hyperscan)->UseRealTime()->MinTime(0.5);
BENCHMARK(BM_Re2)->UseRealTime()->MinTime(0.5);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Log();
  const bool ran = RunPairs("mask_engine", "BM_Re2", "BM_Hyperscan", 5);
  benchmark::Shutdown();
  return ran ? 0 : 1;
}
