#pragma once
// A logd child process serving a home folder, with its standard output (one
// line per client hello) and error captured in files beside it, and the lines
// of the log file it writes.
#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace logclient_test {

class LogdProcess {
 public:
  // Starts logd with HOME=home and waits until its socket exists. Its output
  // goes to home/name.out and home/name.err.
  explicit LogdProcess(const std::filesystem::path& home, const std::string& name = "logd");
  ~LogdProcess() { Stop(); }
  LogdProcess(const LogdProcess&) = delete;
  LogdProcess& operator=(const LogdProcess&) = delete;

  bool listening() const { return listening_; }
  // Hello lines so far, after waiting (up to 10 s) for at least count of them.
  std::vector<std::string> WaitForHellos(size_t count) const;
  // Lines of the log file (the home's default one unless told), after waiting
  // (up to 10 s) for at least count of them.
  std::vector<std::string> WaitForLines(size_t count, const std::filesystem::path& file = {}) const;
  std::string Errors() const;
  // SIGTERM and wait; the raw wait status.
  int Stop();

 private:
  pid_t pid_ = -1;
  bool listening_ = false;
  std::filesystem::path home_, out_, err_;
};

// One line of logd's log file, split into its fields.
struct LogLine {
  std::string date, time, level, logClass;
  long tid = -1;
  std::string text;
};
LogLine ParseLogLine(const std::string& line);

// Overwrites bytes of the shared configuration area below home in place, as
// another client program changing a setting would.
void WriteAreaBytes(const std::filesystem::path& home, off_t offset, const std::string& bytes);

// The per-user socket path below home, as the library computes it.
std::string SocketPathFor(const std::string& home);
// The per-user log file below home that a fresh area names.
std::filesystem::path DefaultLogFile(const std::filesystem::path& home);

}  // namespace logclient_test
