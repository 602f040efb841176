#pragma once
// The client's log file as logd writes it: lines are gathered for a short
// while and appended with one write, to the file that the configuration
// area names at the moment each line arrives.
#include <chrono>
#include <string>

namespace logd {

class LogFile {
 public:
  LogFile() = default;
  ~LogFile();
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  // Lines from now on belong to path. When it differs from the last one, the
  // lines gathered so far go to the old file first and the old file is closed.
  void Follow(const std::string& path);
  // Gathers one whole line; it is written at the latest holdMs from the first
  // line of the batch, or at once when the batch has grown large.
  void Add(const std::string& line, int holdMs);
  // Milliseconds until the gathered lines are due, -1 when there are none.
  int MillisecondsUntilDue() const;
  void WriteIfDue();
  // Appends the gathered lines now, opening (and creating) the file if needed.
  void Write();

 private:
  bool Open();

  std::string path_;
  int fd_ = -1;
  bool complained_ = false;  // about the current path, so a bad path is reported once
  std::string batch_;
  std::chrono::steady_clock::time_point due_;
};

}  // namespace logd
