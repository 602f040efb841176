#pragma once
// Runs the host_probe helper (or a copy of it) as a real child process.
#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace hosttest {

// Where the build put host_probe.
std::string ProbePath();

class ProbeProcess {
 public:
  // argv[0] is the program path exactly as given; cwd "" keeps the test's own.
  explicit ProbeProcess(const std::vector<std::string>& argv, const std::string& cwd = "");
  ~ProbeProcess();
  ProbeProcess(const ProbeProcess&) = delete;
  ProbeProcess& operator=(const ProbeProcess&) = delete;

  // The next line of standard output without its line feed ("" at the end).
  std::string ReadLine();
  // Closes standard input, waits, and returns the exit status (-1 if killed).
  int Finish();
  const std::string& errors() const { return errors_; }

 private:
  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  int errorOutput_ = -1;
  std::string errors_;
};

// Runs body as nobody in a child whose standard error is collected into errors.
int RunAsNobodyCapturingStderr(const std::function<int()>& body, std::string& errors);

// Everything still readable on fd, then closes it.
std::string DrainAndClose(int fd);

}  // namespace hosttest
