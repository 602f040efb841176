#include "forked.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace logclient_test {

bool PassedForked(const std::function<void()>& body, const std::string& home) {
  fflush(nullptr);
  pid_t child = fork();
  if (child == 0) {
    if (!home.empty()) setenv("HOME", home.c_str(), 1);
    body();
    fflush(nullptr);
    _exit(::testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  while (child > 0 && waitpid(child, &status, 0) < 0) {
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

int OpenSocketCount() {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code ec;
    if (std::filesystem::read_symlink(entry.path(), ec).string().rfind("socket:", 0) == 0) ++count;
  }
  return count;
}

}  // namespace logclient_test
