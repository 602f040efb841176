#include "logd/log_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace logd {
namespace {

using Clock = std::chrono::steady_clock;

// Beyond this a batch is written at once: a busy client should not make logd
// hold megabytes, and one large write costs about as much as a small one.
constexpr size_t kLargeBatch = 64 * 1024;

size_t SizeOf(int fd) {
  struct stat info {};
  return fstat(fd, &info) == 0 ? static_cast<size_t>(info.st_size) : 0;
}

// The length of the whole lines at the front of text.
size_t WholeLines(std::string_view text) {
  const size_t end = text.rfind('\n');
  return end == std::string_view::npos ? 0 : end + 1;
}

}  // namespace

LogFile::LogFile(std::string defaultPath, bool systemWide, const Options& options)
    : defaultPath_(std::move(defaultPath)), systemWide_(systemWide), options_(options), path_(defaultPath_) {}

void LogFile::Follow(const std::string& path) {
  const std::string& next = path.empty() ? defaultPath_ : path;
  if (next == path_) return;
  Write();
  fd_.Reset();
  refusalSaid_ = false;
  path_ = next;
}

void LogFile::Add(const std::string& lines, int holdMs) {
  if (lines.empty()) return;
  if (batch_.empty()) due_ = Clock::now() + std::chrono::milliseconds(holdMs);
  batch_ += lines;
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

bool LogFile::OpenAt(const std::string& path, std::string& problem) {
  place_ = LogPlace::Find(path, systemWide_, problem);
  if (place_.valid()) fd_.Reset(place_.OpenFile(problem));
  openPath_ = path;
  return fd_.valid();
}

bool LogFile::Open() {
  // A file deleted or renamed under logd is followed no further, and a
  // refused path is tried again, in case it has been put right.
  if (fd_.valid() && openPath_ == path_ && place_.Holds(fd_.get())) return true;
  fd_.Reset();
  std::string problem;
  if (OpenAt(path_, problem)) return true;
  if (path_ != defaultPath_ && !refusalSaid_)
    fprintf(stderr, "logd: refusing the log file \"%s\": %s; writing to \"%s\" meanwhile\n", path_.c_str(),
            problem.c_str(), defaultPath_.c_str());
  refusalSaid_ = true;
  if (path_ != defaultPath_ && OpenAt(defaultPath_, problem)) return true;
  if (!defaultFailSaid_)
    fprintf(stderr, "logd: cannot open the log file \"%s\": %s\n", defaultPath_.c_str(), problem.c_str());
  defaultFailSaid_ = true;
  return false;
}

// The whole lines that keep the file within its cap; a line longer than the
// cap goes alone into a fresh file, or anywhere once a rotation did not help.
size_t LogFile::LinesThatFit(std::string_view lines, bool rotated) const {
  const size_t size = SizeOf(fd_.get());
  const auto cap = static_cast<size_t>(options_.maxFileBytes);
  if (cap == 0) return lines.size();
  const size_t fit = size < cap ? WholeLines(lines.substr(0, cap - size)) : 0;
  if (fit > 0 || (size > 0 && !rotated)) return fit;
  return lines.find('\n') + 1;
}

void LogFile::Write() {
  std::string_view rest = batch_;
  for (bool rotated = false; !rest.empty();) {
    // Lines for a file that cannot be opened are dropped: holding them would
    // only grow logd until the path is fixed.
    if (!Open()) break;
    const size_t chunk = LinesThatFit(rest, rotated);
    if (chunk == 0) {
      place_.Rotate(options_.keepFiles);
      fd_.Reset();
      rotated = true;
      continue;
    }
    WriteChunk(rest.substr(0, chunk));
    rest.remove_prefix(chunk);
    rotated = false;
  }
  batch_.clear();
}

void LogFile::WriteChunk(std::string_view chunk) {
  const size_t before = SizeOf(fd_.get());
  size_t done = 0;
  int error = ENOSPC;  // what a write that takes nothing means
  while (done < chunk.size()) {
    const ssize_t wrote = write(fd_.get(), chunk.data() + done, chunk.size() - done);
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote < 0) error = errno;
    if (wrote <= 0) break;
    done += static_cast<size_t>(wrote);
  }
  if (done == chunk.size()) {
    if (dropped_ > 0)
      fprintf(stderr, "logd: writing the log file \"%s\" again; %llu lines were dropped\n", openPath_.c_str(),
              static_cast<unsigned long long>(dropped_));
    dropped_ = 0;
    return;
  }
  // A torn line is cut off again: the file holds whole lines only.
  const size_t kept = WholeLines(chunk.substr(0, done));
  if (ftruncate(fd_.get(), static_cast<off_t>(before + kept)) != 0) fd_.Reset();
  if (dropped_ == 0)
    fprintf(stderr, "logd: cannot write the log file \"%s\": %s; dropping whole lines until it can\n",
            openPath_.c_str(), strerror(error));
  dropped_ += static_cast<uint64_t>(std::count(chunk.begin() + static_cast<long>(kept), chunk.end(), '\n'));
}

}  // namespace logd
