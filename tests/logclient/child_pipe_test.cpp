// The shell-less child pipe, driven against tiny helper programs.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "forked.h"
#include "logclient/logclient.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace {

using testsupport::TempDir;

std::string ReadAll(FILE* stream) {
  std::string text;
  for (int c; (c = fgetc(stream)) != EOF;) text += static_cast<char>(c);
  return text;
}

// Runs the program in "r" mode; returns its output and stores the wait status.
std::string RunReading(std::vector<std::string> args, int* status) {
  std::vector<char*> argv;
  for (std::string& arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  pid_t pid = -1;
  FILE* stream = child_popen(argv.data(), "r", &pid);
  if (stream == nullptr) return "<no stream>";
  std::string output = ReadAll(stream);
  *status = child_pclose(stream, pid);
  return output;
}

TEST(ChildPipe, ExpandsOnlyAbsolutePatterns) {
  TempDir folder;
  testsupport::WriteFile(folder / "a1", "");
  testsupport::WriteFile(folder / "a2", "");
  std::string dir = folder.str();
  int status = -1;
  std::string output = RunReading({CHILD_PRINT_ARGS_PATH, dir + "/a*", dir + "/none*", "*.log",
                                   dir + "/a1", dir + "/missing"},
                                  &status);
  EXPECT_EQ(dir + "/a1\n" + dir + "/a2\n" + dir + "/none*\n*.log\n" + dir + "/a1\n" + dir +
                "/missing\n",
            output);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST(ChildPipe, ReportsHowTheChildEnded) {
  int status = -1;
  RunReading({CHILD_EXIT1_PATH}, &status);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1);
  RunReading({CHILD_KILL9_PATH}, &status);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST(ChildPipe, RefusesModesOtherThanReadOrWrite) {
  char* argv[] = {const_cast<char*>(CHILD_EXIT1_PATH), nullptr};
  for (const char* mode : {"rw", "R", ""}) {
    child_pipe_error error{-1, -1};
    pid_t pid = -1;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(nullptr, child_popen_ex(argv, mode, &pid, 0, 0, &error));
    EXPECT_EQ(std::string(": 93 Invalid Parameter mode \"[") + mode +
                  "]\", only allow \"r\" or \"w\"\n",
              ::testing::internal::GetCapturedStderr());
    EXPECT_EQ(0, error.stage);
    EXPECT_EQ(EINVAL, error.saved_errno);
    EXPECT_EQ(0, pid);
  }
  child_pipe_error error{-1, -1};
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(nullptr, child_popen_ex(argv, nullptr, nullptr, 0, 0, &error));
  EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
  EXPECT_EQ(0, error.saved_errno);
}

TEST(ChildPipe, WriteModeFeedsTheChildAndQuietSilencesIt) {
  TempDir folder;
  // In a child, so the test's own descriptors 1 and 2 stay as they are.
  EXPECT_FORKED_PASS("", [&] {
    int out = open((folder / "out").c_str(), O_WRONLY | O_CREAT, 0644);
    int err = open((folder / "err").c_str(), O_WRONLY | O_CREAT, 0644);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    char* argv[] = {const_cast<char*>(CHILD_PRINT_ARGS_PATH), const_cast<char*>("arg"), nullptr};
    for (int quiet : {1, 0}) {
      pid_t pid = 0;
      FILE* stream = child_popen_quiet(argv, "w", &pid, quiet, quiet);
      ASSERT_NE(nullptr, stream);
      fputs(quiet ? "hidden\n" : "shown\n", stream);
      int status = child_pclose(stream, pid);
      EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
  });
  EXPECT_EQ("arg\nshown\n", testsupport::ReadFile(folder / "out"));
  EXPECT_EQ("done\n", testsupport::ReadFile(folder / "err"));
}

TEST(ChildPipe, CloseWithoutAPidDoesNotWait) {
  char* argv[] = {const_cast<char*>(CHILD_EXIT1_PATH), nullptr};
  pid_t pid = 0;
  FILE* stream = child_popen(argv, "r", &pid);
  ASSERT_NE(nullptr, stream);
  int fd = fileno(stream);
  EXPECT_EQ(-1, child_pclose(stream, 0));
  EXPECT_EQ(-1, fcntl(fd, F_GETFD)) << "the stream is closed all the same";
  int status = 0;
  ASSERT_EQ(pid, waitpid(pid, &status, 0));
  EXPECT_EQ(1, WEXITSTATUS(status));
}

TEST(ChildPipe, UnexecutableProgramFailsInTheChild) {
  TempDir folder;
  testsupport::WriteFile(folder / "not-a-program", "data", 0644);
  std::string program = (folder / "not-a-program").string();
  char* argv[] = {program.data(), nullptr};
  pid_t testProcess = getpid();
  child_pipe_error error{};
  pid_t pid = 0;
  FILE* stream = child_popen_ex(argv, "r", &pid, 0, 0, &error);
  if (getpid() != testProcess) {
    // The child gets the failed start back; report what it saw and leave.
    _exit(stream == nullptr && error.stage == 5 && error.saved_errno == EACCES ? 42 : 43);
  }
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ(EOF, fgetc(stream));
  int status = child_pclose(stream, pid);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(42, WEXITSTATUS(status));
}

}  // namespace
