#include "logd_process.h"

#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>

#include "support/fixtures.h"

namespace logclient_test {
namespace {

std::vector<std::string> FileLines(const std::filesystem::path& file) {
  std::vector<std::string> lines;
  std::istringstream text(testsupport::ReadFile(file));
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

sockaddr_un AddressOf(const std::string& path) {
  sockaddr_un address{AF_UNIX, {}};
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

}  // namespace

std::string SocketPathFor(const std::string& home) { return home + "//.ORBClient/.nvxndclogsocket"; }

std::filesystem::path DefaultLogFile(const std::filesystem::path& home) {
  return home / ".ORBClient/logs/ORBClient.log";
}

LogdProcess::LogdProcess(const std::filesystem::path& home) : home_(home) {
  std::filesystem::create_directories(home);
  testsupport::ScopedEnv homeEnv("HOME", home.c_str());
  pid_ = testsupport::StartProgram({LOGD_PATH}, (home / "logd.err").c_str());
  listening_ = testsupport::WaitUntil([&] { return std::filesystem::exists(SocketPathFor(home.string())); }, 10);
}

int LogdProcess::Stop() {
  if (pid_ > 0) kill(pid_, SIGTERM);
  const int code = pid_ > 0 ? testsupport::ExitCodeOf(pid_) : -1;
  pid_ = -1;
  return code;
}

std::vector<std::string> LogdProcess::WaitForLines(size_t count) const {
  testsupport::WaitUntil([&] { return FileLines(DefaultLogFile(home_)).size() >= count; }, 10);
  return FileLines(DefaultLogFile(home_));
}

std::string LogdProcess::Errors() const { return testsupport::ReadFile(home_ / "logd.err"); }

int ListenAt(const std::string& path, bool holdConnects) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  const sockaddr_un address = AddressOf(path);
  const auto* raw = reinterpret_cast<const sockaddr*>(&address);
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  unlink(path.c_str());
  bind(listener, raw, sizeof address);
  listen(listener, 0);
  if (holdConnects) connect(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), raw, sizeof address);
  return listener;
}

int ConnectTo(const std::string& path) {
  const sockaddr_un address = AddressOf(path);
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const timeval patience{5, 0};  // a logd that keeps a client it should drop fails a read, not hangs it
  setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  return connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? fd : -1;
}

}  // namespace logclient_test
