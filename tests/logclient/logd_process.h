#pragma once
// What the logging-client tests share: a logd child process serving a home
// folder (its output and errors kept beside it, the lines it logs), both ends
// of the link as logd offers them, and a child process with a home of its own.
#include <gtest/gtest.h>
#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "logclient/logclient.h"
#include "support/forked.h"
#include "support/temp_dir.h"

namespace logclient_test {

class LogdProcess {
 public:
  // Starts logd with HOME=home and waits until its socket exists.
  explicit LogdProcess(const std::filesystem::path& home);
  ~LogdProcess() { Stop(); }
  LogdProcess(const LogdProcess&) = delete;

  bool listening() const { return listening_; }
  // Lines of the log file (the home's default one unless told), after waiting
  // (up to 10 s) for at least count of them.
  std::vector<std::string> WaitForLines(size_t count, const std::filesystem::path& file = {}) const;
  std::string Errors() const;
  int Stop();  // SIGTERM and wait; the raw wait status

 private:
  pid_t pid_ = -1;
  bool listening_ = false;
  std::filesystem::path home_;
};

// The per-user socket path below home, as the library computes it.
std::string SocketPathFor(const std::string& home);
// The per-user log file below home that a fresh area names.
std::filesystem::path DefaultLogFile(const std::filesystem::path& home);

// The listening end of the link, as logd makes it. With holdConnects one
// connection of our own fills the backlog: the next connect waits until we accept.
int ListenAt(const std::string& path, bool holdConnects = false);
int ConnectTo(const std::string& path);  // -1 when nobody listens

// Where the client runs system-wide its area and socket are the machine's, not
// a test home's: tests of them skip there.
inline constexpr const char* kSystemWideHere = "the client runs system-wide here: area and socket are /var/log/norvex's";

// Runs body in a forked child with HOME at a fresh folder: the library keeps
// one area and one link per process.
inline void InChildWithHome(const std::function<void(const std::string& home)>& body) {
  if (log_system_wide_mode()) GTEST_SKIP() << kSystemWideHere;
  testsupport::TempDir home;
  EXPECT_EQ(testsupport::RunForked([&] { setenv("HOME", home.c_str(), 1), body(home.str()); }), 0);
}

}  // namespace logclient_test
