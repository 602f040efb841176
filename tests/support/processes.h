#pragma once
// Child processes of a test, and waits that give up instead of hanging the run.
// A forked body keeps what it changes (environment, umask, per-process state) to itself.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace testsupport {

// Starts argv (its program looked up on PATH) with output and errors appended
// to output; it gets SIGTERM when the test process ends, even by a crash.
inline pid_t StartProgram(std::vector<std::string> argv, const char* output = "/dev/null") {
  const pid_t pid = fork();
  if (pid == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    const int fd = open(output, O_WRONLY | O_CREAT | O_APPEND, 0644);
    dup2(fd, STDOUT_FILENO), dup2(fd, STDERR_FILENO);
    std::vector<char*> args;
    for (std::string& arg : argv) args.push_back(arg.data());
    args.push_back(nullptr);
    execvp(args[0], args.data());
    _exit(127);
  }
  return pid;
}

inline bool WaitUntil(const std::function<bool()>& done, int seconds = 30) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  for (; !done(); std::this_thread::sleep_for(std::chrono::milliseconds(10)))
    if (std::chrono::steady_clock::now() > deadline) return false;
  return true;
}

// The exit code, or -1 when the child did not end in time or was killed.
inline int ExitCodeOf(pid_t pid, int seconds = 30) {
  int status = 0;
  const bool ended = WaitUntil([&] { return waitpid(pid, &status, WNOHANG) == pid; }, seconds);
  return ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// 0, or 1 when an expectation failed in the child; -1 on a crash.
inline int RunForked(const std::function<void()>& body) {
  fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    body();
    fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  return child > 0 ? ExitCodeOf(child, 600) : -1;
}

}  // namespace testsupport
