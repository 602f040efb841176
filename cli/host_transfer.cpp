#include "cli/host_transfer.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "app/i18n.h"
#include "cli/gzip_tar_check.h"

extern char** environ;

namespace {

constexpr size_t kKeptErrorBytes = 4096;
constexpr auto kKillGrace = std::chrono::seconds(3);

// Its own standard input is /dev/null: many ssh children must not share the
// terminal's, and a password prompt has nothing to read. Stop signals the
// fan-out holds back are let through to it.
bool SpawnWithPipes(const std::vector<std::string>& argv, int outWrite, int errWrite, pid_t& pid) {
  std::vector<std::string> words(argv);
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, outWrite, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errWrite, STDERR_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  const int failed = posix_spawnp(&pid, pointers[0], &actions, &attributes, pointers.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return failed == 0;
}

bool WriteAll(int fd, const char* data, size_t size) {
  while (size > 0) {
    const ssize_t written = write(fd, data, size);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    data += written, size -= static_cast<size_t>(written);
  }
  return true;
}

}  // namespace

std::string FailureReason(int waitStatus, const std::string& sshErrors) {
  if (WIFSIGNALED(waitStatus)) return FormatMessage(_("ended by signal %s"), std::to_string(WTERMSIG(waitStatus)));
  const int code = WEXITSTATUS(waitStatus);
  // 255 is ssh's own failure; anything else is the remote command's code.
  if (code == 255) {
    if (sshErrors.find("Permission denied") != std::string::npos) return _("key refused");
    if (sshErrors.find("Host key verification failed") != std::string::npos) return _("host key refused");
    return _("unreachable");
  }
  if (code == 127) return _("remote command missing");
  return FormatMessage(_("remote exit code %s"), std::to_string(code));
}

HostTransfer::~HostTransfer() { Abandon(); }

bool HostTransfer::Start(const std::vector<std::string>& argv) {
  started_ = Clock::now();
  partial_ = folder_ / ("." + host_ + ".part-XXXXXX");
  std::string name = partial_.string();
  fileFd_ = mkostemp(name.data(), O_CLOEXEC);
  partial_ = fileFd_ >= 0 ? name : std::string();
  int out[2] = {-1, -1}, err[2] = {-1, -1};
  if (fileFd_ < 0 || pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0 ||
      !SpawnWithPipes(argv, out[1], err[1], pid_)) {
    result_ = fileFd_ < 0 ? FormatMessage(_("cannot write into %s"), folder_.string())
                          : FormatMessage(_("cannot start %s"), argv.front());
    for (int fd : {out[0], out[1], err[0], err[1]})
      if (fd >= 0) close(fd);
    pid_ = 0;
    Abandon();
    return false;
  }
  close(out[1]), close(err[1]);
  outFd_ = out[0], errFd_ = err[0];
  fcntl(outFd_, F_SETFL, O_NONBLOCK), fcntl(errFd_, F_SETFL, O_NONBLOCK);
  return true;
}

void HostTransfer::CloseFd(int& fd) {
  if (fd >= 0) close(fd);
  fd = -1;
}

// False once the pipe is closed.
bool HostTransfer::DrainPipe(int& fd, bool intoFile) {
  char buffer[1 << 16];
  while (fd >= 0) {
    const ssize_t got = read(fd, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0 && errno == EAGAIN) return true;
    if (got <= 0) break;
    if (intoFile) {
      writeFailed_ = writeFailed_ || !WriteAll(fileFd_, buffer, static_cast<size_t>(got));
      size_ += static_cast<unsigned long long>(got);
    } else if (errors_.size() < kKeptErrorBytes) {
      errors_.append(buffer, static_cast<size_t>(got));
    }
  }
  CloseFd(fd);
  return false;
}

void HostTransfer::Drain() {
  DrainPipe(outFd_, true);
  DrainPipe(errFd_, false);
}

bool HostTransfer::Ended() {
  if (pid_ == 0) return true;
  if (waitpid(pid_, &status_, WNOHANG) != pid_) return false;
  pid_ = 0;
  // Whatever ssh wrote before it ended is in the pipes; a child of its own
  // that kept them open (a ProxyCommand, a control master) must not hold us.
  Drain();
  CloseFd(outFd_), CloseFd(errFd_);
  return true;
}

void HostTransfer::Kill(bool timedOut) {
  if (pid_ == 0) return;
  timedOut_ = timedOut_ || timedOut;
  const bool first = killed_ == Clock::time_point{};
  if (first) killed_ = Clock::now();
  if (first || Clock::now() - killed_ > kKillGrace) kill(pid_, first ? SIGTERM : SIGKILL);
}

void HostTransfer::Finish() {
  seconds_ = std::chrono::duration<double>(Clock::now() - started_).count();
  const bool whole = !timedOut_ && !writeFailed_ && WIFEXITED(status_) && WEXITSTATUS(status_) == 0 &&
                     fsync(fileFd_) == 0 && IsCompleteGzipTar(partial_);
  if (whole) {
    CloseFd(fileFd_);
    ok_ = rename(partial_.c_str(), (folder_ / (host_ + ".tar.gz")).c_str()) == 0;
    result_ = ok_ ? _("ok") : FormatMessage(_("cannot write into %s"), folder_.string());
  } else if (timedOut_) {
    result_ = _("timed out");
  } else if (writeFailed_) {
    result_ = FormatMessage(_("cannot write into %s"), folder_.string());
  } else if (WIFEXITED(status_) && WEXITSTATUS(status_) == 0) {
    result_ = _("incomplete archive");
  } else {
    result_ = FailureReason(status_, errors_);
  }
  if (ok_) partial_.clear();
  Abandon();
}

void HostTransfer::Abandon() {
  if (pid_ != 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, &status_, 0);
    pid_ = 0;
  }
  CloseFd(outFd_), CloseFd(errFd_), CloseFd(fileFd_);
  if (!partial_.empty()) unlink(partial_.c_str());
  partial_.clear();
}
