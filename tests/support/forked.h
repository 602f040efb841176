#pragma once
// Runs a test body in a forked child, so that what it changes in the process
// (environment, umask, a library's per-process state) stays there. The exit
// code: 0, or 1 when an expectation failed in the child; -1 on a crash.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <functional>

namespace testsupport {

inline int RunForked(const std::function<void()>& body) {
  fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    body();
    fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return child > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace testsupport
