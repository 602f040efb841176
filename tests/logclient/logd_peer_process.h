#pragma once
// A logd-peer child process listening on a socket path, with its standard
// output and error captured in files.
#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace logclient_test {

class LogdPeerProcess {
 public:
  // Starts the peer and waits until its socket exists.
  LogdPeerProcess(const std::string& socketPath, const std::filesystem::path& outputFolder);
  ~LogdPeerProcess() { Stop(); }
  LogdPeerProcess(const LogdPeerProcess&) = delete;
  LogdPeerProcess& operator=(const LogdPeerProcess&) = delete;

  bool listening() const { return listening_; }
  // Output lines so far, after waiting (up to 10 s) for at least count of them.
  std::vector<std::string> WaitForLines(size_t count) const;
  std::string Errors() const;
  // SIGTERM and wait; the raw wait status.
  int Stop();

 private:
  std::vector<std::string> Lines() const;

  pid_t pid_ = -1;
  bool listening_ = false;
  std::filesystem::path out_, err_;
};

// The per-user socket path below home, as the library computes it.
std::string SocketPathFor(const std::string& home);

}  // namespace logclient_test
