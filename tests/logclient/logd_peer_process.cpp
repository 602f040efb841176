#include "logd_peer_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
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

}  // namespace

std::string SocketPathFor(const std::string& home) { return home + "//.ORBClient/.nvxndclogsocket"; }

LogdPeerProcess::LogdPeerProcess(const std::string& socketPath, const std::filesystem::path& outputFolder)
    : out_(outputFolder / "peer.out"), err_(outputFolder / "peer.err") {
  std::filesystem::create_directories(std::filesystem::path(socketPath).parent_path());
  std::filesystem::create_directories(outputFolder);
  pid_ = fork();
  if (pid_ == 0) {
    dup2(open(out_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDOUT_FILENO);
    dup2(open(err_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDERR_FILENO);
    execl(LOGD_PEER_PATH, "logd-peer", socketPath.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  listening_ = pid_ > 0 && WaitUntil([&] { return std::filesystem::exists(socketPath); });
}

int LogdPeerProcess::Stop() {
  if (pid_ <= 0) return -1;
  kill(pid_, SIGTERM);
  int status = -1;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  return status;
}

std::vector<std::string> LogdPeerProcess::Lines() const {
  std::vector<std::string> lines;
  std::istringstream text(testsupport::ReadFile(out_));
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> LogdPeerProcess::WaitForLines(size_t count) const {
  WaitUntil([&] { return Lines().size() >= count; });
  return Lines();
}

std::string LogdPeerProcess::Errors() const { return testsupport::ReadFile(err_); }

}  // namespace logclient_test
