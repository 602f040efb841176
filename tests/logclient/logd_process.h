#pragma once
// What the logging-client tests share: logd run as a child for a home folder,
// both ends of the link as logd offers them, a child with a home of its own.
#include <gtest/gtest.h>
#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "logclient/logclient.h"
#include "support/processes.h"
#include "support/fixtures.h"

namespace logclient_test {

class LogdProcess {
 public:
  // Waits until the socket exists; its output and errors go to logd.err in home.
  explicit LogdProcess(const std::filesystem::path& home);
  ~LogdProcess() { Stop(); }
  LogdProcess(const LogdProcess&) = delete;

  bool listening() const { return listening_; }
  // The lines of the home's client log once it has count of them, or after 10 s.
  std::vector<std::string> WaitForLines(size_t count) const;
  std::string Errors() const;
  int Stop();  // SIGTERM; the exit code

 private:
  pid_t pid_ = -1;
  bool listening_ = false;
  std::filesystem::path home_;
};

std::string SocketPathFor(const std::string& home);
std::filesystem::path DefaultLogFile(const std::filesystem::path& home);

// With holdConnects one connection of our own fills the backlog, so the next
// connect waits until we accept.
int ListenAt(const std::string& path, bool holdConnects = false);
int ConnectTo(const std::string& path);  // -1 when nobody listens

inline constexpr const char* kSystemWideHere = "the client runs system-wide here: area and socket are /var/log/norvex's";

// The library keeps one area and one link per process.
inline void InChildWithHome(const std::function<void(const std::string& home)>& body) {
  if (log_system_wide_mode()) GTEST_SKIP() << kSystemWideHere;
  testsupport::TempDir home;
  EXPECT_EQ(testsupport::RunForked([&] { setenv("HOME", home.c_str(), 1), body(home.str()); }), 0);
}

}  // namespace logclient_test
