#pragma once
// The client's log file as logd writes it: lines are gathered for a short
// while and appended with one write to the file the configuration area names,
// or to the default log file while that name is refused. The file holds whole
// lines only, is reopened when it was deleted or renamed (or on request), and
// is rotated to NAME.1 ... NAME.N when it would pass its size cap.
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "logd/log_place.h"
#include "logd/options.h"
#include "logd/unique_fd.h"

namespace logd {

class LogFile {
 public:
  LogFile(std::string defaultPath, bool systemWide, const Options& options);
  LogFile(const LogFile&) = delete;

  // Lines from now on belong to path (the default log file when empty).
  // When it differs from the last one, the lines gathered so far go first.
  void Follow(const std::string& path);
  // Gathers whole lines; they are written at the latest holdMs from the first
  // line of the batch, or at once when the batch has grown large.
  void Add(const std::string& lines, int holdMs);
  // Milliseconds until the gathered lines are due, -1 when there are none.
  int MillisecondsUntilDue() const;
  void WriteIfDue();
  // Appends the gathered lines now.
  void Write();
  // Closes the file, so the next write opens whatever is at its path now.
  void Reopen() { fd_.Reset(); }

 private:
  bool Open();
  bool OpenAt(const std::string& path, std::string& problem);
  size_t LinesThatFit(std::string_view lines, bool rotated) const;
  void WriteChunk(std::string_view chunk);

  const std::string defaultPath_;
  const bool systemWide_;
  const Options& options_;
  std::string path_;
  std::string openPath_;       // path_, or the default log file while path_ is refused
  LogPlace place_;
  UniqueFd fd_;
  bool refusalSaid_ = false;   // about path_, so a refused path is reported once
  bool defaultFailSaid_ = false;
  uint64_t dropped_ = 0;       // lines dropped since writing failed
  std::string batch_;
  std::chrono::steady_clock::time_point due_;
};

}  // namespace logd
