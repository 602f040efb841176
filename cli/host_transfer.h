#pragma once
// One host's fetch: an ssh child whose standard output streams into a private
// file beside the archive's place, renamed to HOST.tar.gz only when it is whole.
#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

class HostTransfer {
 public:
  using Clock = std::chrono::steady_clock;

  HostTransfer(std::string host, std::filesystem::path folder) : host_(std::move(host)), folder_(std::move(folder)) {}
  ~HostTransfer();
  HostTransfer(const HostTransfer&) = delete;
  HostTransfer& operator=(const HostTransfer&) = delete;

  // Starts argv (no shell); false, with the reason set, when it cannot start.
  bool Start(const std::vector<std::string>& argv);
  // The pipes still open, for poll(); -1 for a closed one.
  int outFd() const { return outFd_; }
  int errFd() const { return errFd_; }
  // Moves what is waiting on the pipes into the file and the error text.
  void Drain();
  // Reaps ssh when it has ended; true once it has.
  bool Ended();
  // Ends ssh (SIGTERM, then SIGKILL when asked again after a grace time).
  void Kill(bool timedOut);
  // After Ended(): the file renamed into place, or removed; the result set.
  void Finish();
  // Whatever happens, no partial file is left and ssh is reaped.
  void Abandon();

  const std::string& host() const { return host_; }
  Clock::time_point started() const { return started_; }
  bool ok() const { return ok_; }
  const std::string& result() const { return result_; }
  unsigned long long size() const { return size_; }
  double seconds() const { return seconds_; }

 private:
  bool DrainPipe(int& fd, bool intoFile);
  void CloseFd(int& fd);

  std::string host_;
  std::filesystem::path folder_, partial_;
  int fileFd_ = -1, outFd_ = -1, errFd_ = -1;
  pid_t pid_ = 0;
  int status_ = 0;
  bool timedOut_ = false, writeFailed_ = false, ok_ = false;
  Clock::time_point started_{}, killed_{};
  std::string errors_, result_;
  unsigned long long size_ = 0;
  double seconds_ = 0;
};

// The few words a failed fetch is reported with, from ssh's wait status and
// what it said on standard error.
std::string FailureReason(int waitStatus, const std::string& sshErrors);
