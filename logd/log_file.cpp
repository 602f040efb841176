#include "logd/log_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace logd {
namespace {

using Clock = std::chrono::steady_clock;

// Beyond this a batch is written at once: a busy client should not make logd
// hold megabytes, and one large write costs about as much as a small one.
constexpr size_t kLargeBatch = 64 * 1024;

}  // namespace

LogFile::~LogFile() {
  if (fd_ >= 0) close(fd_);
}

void LogFile::Follow(const std::string& path) {
  if (path == path_) return;
  Write();
  if (fd_ >= 0) close(fd_);
  fd_ = -1;
  complained_ = false;
  path_ = path;
}

void LogFile::Add(const std::string& line, int holdMs) {
  if (batch_.empty()) due_ = Clock::now() + std::chrono::milliseconds(holdMs);
  batch_ += line;
  if (batch_.size() >= kLargeBatch) Write();
}

int LogFile::MillisecondsUntilDue() const {
  if (batch_.empty()) return -1;
  auto left = std::chrono::duration_cast<std::chrono::milliseconds>(due_ - Clock::now()).count();
  return left > 0 ? static_cast<int>(left) : 0;
}

void LogFile::WriteIfDue() {
  if (!batch_.empty() && Clock::now() >= due_) Write();
}

bool LogFile::Open() {
  if (fd_ >= 0) return true;
  // O_APPEND keeps each batch whole at the end even when another writer
  // (a copy into the issue folder, say) touches the file meanwhile.
  fd_ = path_.empty() ? -1 : open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  if (fd_ < 0 && !complained_) {
    fprintf(stderr, "logd: cannot open the log file \"%s\": %s\n", path_.c_str(),
            path_.empty() ? "no path" : strerror(errno));
    complained_ = true;
  }
  return fd_ >= 0;
}

void LogFile::Write() {
  if (batch_.empty()) return;
  // Lines for a file that cannot be opened are dropped: holding them would
  // only grow logd until the path is fixed.
  for (size_t done = 0; Open() && done < batch_.size();) {
    ssize_t wrote = write(fd_, batch_.data() + done, batch_.size() - done);
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote <= 0) {
      if (!complained_)
        fprintf(stderr, "logd: cannot write the log file \"%s\": %s\n", path_.c_str(), strerror(errno));
      complained_ = true;
      break;
    }
    done += static_cast<size_t>(wrote);
  }
  batch_.clear();
}

}  // namespace logd
