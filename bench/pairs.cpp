#include "pairs.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

// Keeps the real time per iteration of the one run it is given; prints nothing,
// so that the pair lines are the program's whole output.
class LastRunReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      if (run.run_type == Run::RT_Iteration && !run.error_occurred && run.iterations > 0)
        nanoseconds = run.real_accumulated_time * 1e9 / static_cast<double>(run.iterations);
  }
  double nanoseconds = -1;
};

double RunOnce(const char* name) {
  // Settings such as a minimum time are appended to the name after a "/".
  std::string pattern = "^";
  pattern.append(name).append("(/|$)");
  LastRunReporter reporter;
  if (benchmark::RunSpecifiedBenchmarks(&reporter, pattern) != 1) return -1;
  return reporter.nanoseconds;
}

}  // namespace

bool RunPairs(const char* row, const char* floorName, const char* subjectName, int pairs) {
  std::fprintf(stderr, "== %s: %s against %s, %d pairs\n", row, subjectName, floorName, pairs);
  for (int pair = -1; pair < pairs; ++pair) {
    const double floor = RunOnce(floorName);
    const double subject = RunOnce(subjectName);
    if (floor <= 0 || subject <= 0) {
      std::fprintf(stderr, "%s: a run of %s or %s failed\n", row, floorName, subjectName);
      return false;
    }
    if (pair >= 0) PrintPair(row, floor, subject);
  }
  return true;
}
