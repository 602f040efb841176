#pragma once
// What "hosts" shows: the closing table on standard output, and while it runs
// a progress line on standard error when that is a terminal.
#include <chrono>
#include <cstdio>
#include <vector>

#include "cli/host_fanout.h"

// One row per host, in the order given: host, result, size, seconds.
void PrintHostsSummary(const std::vector<HostResult>& results, std::FILE* out);

class HostsProgress {
 public:
  HostsProgress();  // shows nothing unless standard error is a terminal
  ~HostsProgress();
  HostsProgress(const HostsProgress&) = delete;
  HostsProgress& operator=(const HostsProgress&) = delete;

  void Show(const FanOutCounts& counts);

 private:
  bool terminal_ = false;
  FanOutCounts shown_{-1, -1, -1};
  std::chrono::steady_clock::time_point shownAt_{};
};
