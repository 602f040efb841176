#include "logd_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <sstream>
#include <thread>

#include "support/files.h"

namespace logclient_test {
namespace {

// Polls every 10 ms until cond holds or 10 s have passed.
template <typename Condition>
bool WaitUntil(Condition cond) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!cond()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

std::vector<std::string> FileLines(const std::filesystem::path& file) {
  std::vector<std::string> lines;
  std::istringstream text(testsupport::ReadFile(file));
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> WaitForFileLines(const std::filesystem::path& file, size_t count) {
  WaitUntil([&] { return FileLines(file).size() >= count; });
  return FileLines(file);
}

}  // namespace

std::string SocketPathFor(const std::string& home) { return home + "//.ORBClient/.nvxndclogsocket"; }

std::filesystem::path DefaultLogFile(const std::filesystem::path& home) {
  return home / ".ORBClient/logs/ORBClient.log";
}

LogdProcess::LogdProcess(const std::filesystem::path& home, const std::string& name)
    : home_(home), out_(home / (name + ".out")), err_(home / (name + ".err")) {
  std::filesystem::create_directories(home);
  pid_ = fork();
  if (pid_ == 0) {
    dup2(open(out_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDOUT_FILENO);
    dup2(open(err_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDERR_FILENO);
    setenv("HOME", home.c_str(), 1);
    execl(LOGD_PATH, "logd", static_cast<char*>(nullptr));
    _exit(127);
  }
  const std::string socket = SocketPathFor(home.string());
  listening_ = pid_ > 0 && WaitUntil([&] { return std::filesystem::exists(socket); });
}

int LogdProcess::Stop() {
  if (pid_ <= 0) return -1;
  kill(pid_, SIGTERM);
  int status = -1;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  return status;
}

std::vector<std::string> LogdProcess::WaitForHellos(size_t count) const { return WaitForFileLines(out_, count); }

std::vector<std::string> LogdProcess::WaitForLines(size_t count, const std::filesystem::path& file) const {
  return WaitForFileLines(file.empty() ? DefaultLogFile(home_) : file, count);
}

std::string LogdProcess::Errors() const { return testsupport::ReadFile(err_); }

void WriteAreaBytes(const std::filesystem::path& home, off_t offset, const std::string& bytes) {
  int fd = open((home / ".ORBClient/.nvxndclogconf").c_str(), O_WRONLY);
  if (fd < 0 || pwrite(fd, bytes.data(), bytes.size(), offset) != static_cast<ssize_t>(bytes.size()))
    perror("WriteAreaBytes");
  if (fd >= 0) close(fd);
}

LogLine ParseLogLine(const std::string& line) {
  LogLine parsed;
  char date[16] = "", time[32] = "", level[16] = "", logClass[32] = "";
  int textStart = -1;
  sscanf(line.c_str(), "%15s %31s %15s %31s %ld%n", date, time, level, logClass, &parsed.tid, &textStart);
  // The text follows after exactly one blank and may itself begin with blanks.
  if (textStart < 0 || static_cast<size_t>(textStart) >= line.size()) return parsed;
  parsed = {date, time, level, logClass, parsed.tid, line.substr(static_cast<size_t>(textStart) + 1)};
  return parsed;
}

}  // namespace logclient_test
