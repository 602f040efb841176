#pragma once
// While an archive is being made, one line on standard error that shows how
// far it has grown; only when standard error is a terminal, so logs and
// pipes never get control characters.
#include <atomic>
#include <filesystem>
#include <thread>

class ProgressLine {
 public:
  explicit ProgressLine(std::filesystem::path archive);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

 private:
  void Show();

  std::filesystem::path archive_;
  std::atomic<bool> done_{false};
  std::thread painter_;
};
