#pragma once
// What the logging-client tests share: logd run as a child for a home folder,
// both ends of the link as logd offers them, a child with a home of its own.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "logclient/config_area.h"
#include "logclient/logclient.h"
#include "logclient/wire_format.h"
#include "support/fixtures.h"
#include "support/processes.h"

namespace logclient_test {

inline std::string SocketPathFor(const std::string& home) { return home + "//.ORBClient/.nvxndclogsocket"; }
inline std::filesystem::path DefaultLogFile(const std::filesystem::path& home) {
  return home / ".ORBClient/logs/ORBClient.log";
}

class LogdProcess {
 public:
  // Waits until the socket exists; its output and errors go to logd.err in home.
  explicit LogdProcess(const std::filesystem::path& home, const std::vector<std::string>& command = {LOGD_PATH},
                       const std::string& socket = {})
      : home_(home) {
    std::filesystem::create_directories(home);
    testsupport::ScopedEnv homeEnv("HOME", home.c_str());
    pid_ = testsupport::StartProgram(command, (home / "logd.err").c_str());
    const std::string socketPath = socket.empty() ? SocketPathFor(home.string()) : socket;
    listening_ = testsupport::WaitUntil([&] { return std::filesystem::exists(socketPath); }, 10);
  }
  ~LogdProcess() { Stop(); }
  LogdProcess(const LogdProcess&) = delete;

  bool listening() const { return listening_; }
  std::string Errors() const { return testsupport::ReadFile(home_ / "logd.err"); }
  // The lines of the home's client log once it has count of them, or after 10 s.
  std::vector<std::string> WaitForLines(size_t count, const std::filesystem::path& file = {}) const {
    std::vector<std::string> lines;
    testsupport::WaitUntil([&] {
      std::istringstream text(testsupport::ReadFile(file.empty() ? DefaultLogFile(home_) : file));
      lines.clear();
      for (std::string line; std::getline(text, line);) lines.push_back(line);
      return lines.size() >= count;
    }, 10);
    return lines;
  }
  pid_t pid() const { return pid_; }
  int Stop() {  // SIGTERM; the exit code
    if (pid_ > 0) kill(pid_, SIGTERM);
    const int code = pid_ > 0 ? testsupport::ExitCodeOf(pid_) : -1;
    pid_ = -1;
    return code;
  }

 private:
  pid_t pid_ = -1;
  bool listening_ = false;
  std::filesystem::path home_;
};

// Whether file holds text within 10 s.
inline bool Holds(const std::filesystem::path& file, const std::string& text) {
  return testsupport::WaitUntil([&] { return testsupport::ReadFile(file).find(text) != std::string::npos; }, 10);
}

inline sockaddr_un AddressOf(const std::string& path) {
  sockaddr_un address{AF_UNIX, {}};
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

// With holdConnects our own connection fills the backlog: the next connect waits for an accept.
inline int ListenAt(const std::string& path, bool holdConnects = false) {
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

// -1 when nobody listens; a logd that keeps a client it should drop fails a read, not hangs it.
inline int ConnectTo(const std::string& path) {
  const sockaddr_un address = AddressOf(path);
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const timeval patience{5, 0};
  setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  return connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? fd : -1;
}

// A record as the library sends it, with whatever thread id and time it claims.
inline std::string RecordBytes(const std::string& text, uint16_t tid = 7, uint32_t seconds = 0) {
  using namespace logclient::wire;
  std::string bytes(kHeaderSize + kRecordFixedSize + text.size() + 1, '\0');
  auto* at = reinterpret_cast<unsigned char*>(bytes.data());
  PutHeader(at, bytes.size() - kHeaderSize, kTypeRecord);
  PutU16(at + kHeaderSize + kRecordLevel, LOG_LEVEL_AOL);
  PutU16(at + kHeaderSize + kRecordThread, tid);
  PutU32(at + kHeaderSize + kRecordSeconds, seconds);
  text.copy(bytes.data() + kHeaderSize + kRecordFixedSize, text.size());
  return bytes;
}

// An area image naming logPath, with drain time B, client limit C and hold time A.
inline void WriteArea(const std::string& file, const std::string& logPath, int32_t drain = 2, int32_t clients = 200,
                      int32_t holdMs = 1) {
  logclient::ConfigArea area{};
  area.flags = LOG_FLAG_LOGD_DATE | LOG_FLAG_LOGD_MICROSECONDS;
  logPath.copy(area.path, sizeof area.path);
  area.tuningA = holdMs, area.tuningB = drain, area.tuningC = clients;
  area.magic = logclient::kAreaMagic;
  testsupport::WriteFile(file, std::string(reinterpret_cast<const char*>(&area), sizeof area), 0666);
}

inline constexpr const char* kSystemWideHere = "the client runs system-wide here: area and socket are /var/log/norvex's";

// The library keeps one area and one link per process.
inline void InChildWithHome(const std::function<void(const std::string& home)>& body) {
  if (log_system_wide_mode()) GTEST_SKIP() << kSystemWideHere;
  testsupport::TempDir home;
  EXPECT_EQ(testsupport::RunForked([&] { setenv("HOME", home.c_str(), 1), body(home.str()); }), 0);
}

}  // namespace logclient_test
