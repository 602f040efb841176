// The shell-less child pipe, driven against small shell commands.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "logclient/logclient.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace {

using testsupport::TempDir;

struct Argv {
  explicit Argv(std::vector<std::string> args) : texts(std::move(args)) {
    for (std::string& arg : texts) pointers.push_back(arg.data());
    pointers.push_back(nullptr);
  }
  std::vector<std::string> texts;
  std::vector<char*> pointers;
};

// Runs the program in "r" mode; returns its output and stores the wait status.
std::string RunReading(std::vector<std::string> args, int* status) {
  Argv argv(std::move(args));
  pid_t pid = -1;
  FILE* stream = child_popen(argv.pointers.data(), "r", &pid);
  std::string output;
  for (int c; stream != nullptr && (c = fgetc(stream)) != EOF;) output += static_cast<char>(c);
  *status = stream != nullptr ? child_pclose(stream, pid) : -2;
  return output;
}

TEST(ChildPipe, ExpandsOnlyAbsolutePatternsAndReportsHowTheChildEnded) {
  TempDir folder;
  testsupport::WriteFile(folder / "a1", "");
  testsupport::WriteFile(folder / "a2", "");
  std::string dir = folder.str();
  int status = -1;
  EXPECT_EQ(dir + "/a1\n" + dir + "/a2\n" + dir + "/none*\n*.log\n",
            RunReading({"printf", "%s\\n", dir + "/a*", dir + "/none*", "*.log"}, &status));
  EXPECT_EQ(0, status);
  RunReading({"false"}, &status);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1);
  RunReading({"sh", "-c", "kill -9 $$"}, &status);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST(ChildPipe, RefusesModesOtherThanReadOrWrite) {
  Argv argv({"false"});
  for (const char* mode : {"rw", "R", ""}) {
    child_pipe_error error{-1, -1};
    pid_t pid = -1;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(nullptr, child_popen_ex(argv.pointers.data(), mode, &pid, 0, 0, &error));
    EXPECT_EQ(std::string(": 93 Invalid Parameter mode \"[") + mode + "]\", only allow \"r\" or \"w\"\n",
              ::testing::internal::GetCapturedStderr());
    EXPECT_TRUE(error.stage == 0 && error.saved_errno == EINVAL && pid == 0);
  }
  child_pipe_error error{-1, -1};
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(nullptr, child_popen_ex(argv.pointers.data(), nullptr, nullptr, 0, 0, &error));
  EXPECT_EQ("", ::testing::internal::GetCapturedStderr()) << "a null mode is refused silently";
  EXPECT_EQ(0, error.saved_errno);
}

TEST(ChildPipe, CloseWithoutAPidDoesNotWait) {
  Argv argv({"false"});
  pid_t pid = 0;
  FILE* stream = child_popen(argv.pointers.data(), "r", &pid);
  ASSERT_NE(nullptr, stream);
  int fd = fileno(stream), status = 0;
  EXPECT_EQ(-1, child_pclose(stream, 0));
  EXPECT_EQ(-1, fcntl(fd, F_GETFD)) << "the stream is closed all the same";
  ASSERT_EQ(pid, waitpid(pid, &status, 0));
  EXPECT_EQ(1, WEXITSTATUS(status));
}

TEST(ChildPipe, UnexecutableProgramFailsInTheChild) {
  TempDir folder;
  testsupport::WriteFile(folder / "not-a-program", "data", 0644);
  Argv argv({(folder / "not-a-program").string()});
  pid_t testProcess = getpid(), pid = 0;
  child_pipe_error error{};
  FILE* stream = child_popen_ex(argv.pointers.data(), "r", &pid, 0, 0, &error);
  if (getpid() != testProcess)  // the child gets the failed start back; report it and leave
    _exit(stream == nullptr && error.stage == 5 && error.saved_errno == EACCES ? 42 : 43);
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ(EOF, fgetc(stream));
  int status = child_pclose(stream, pid);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 42);
}

TEST(ChildPipe, WriteModeFeedsStdinAndQuietFlagsSilenceOnlyTheirStream) {
  TempDir folder;
  const std::string out = (folder / "out").string();
  // The child copies its stdin to a file and writes one word to each of its own streams.
  Argv argv({"sh", "-c", "cat > " + out + "; echo to-stdout; echo to-stderr >&2"});
  for (int quietOut : {0, 1}) {
    for (int quietErr : {0, 1}) {
      pid_t pid = 0;
      ::testing::internal::CaptureStdout();
      ::testing::internal::CaptureStderr();
      FILE* stream = child_popen_quiet(argv.pointers.data(), "w", &pid, quietOut, quietErr);
      ASSERT_NE(nullptr, stream);
      fputs("fed through the pipe", stream);
      const int status = child_pclose(stream, pid);
      const std::string printed = ::testing::internal::GetCapturedStdout();
      const std::string complained = ::testing::internal::GetCapturedStderr();
      EXPECT_EQ(0, status);
      EXPECT_EQ("fed through the pipe", testsupport::ReadFile(out));
      EXPECT_EQ(quietOut ? "" : "to-stdout\n", printed) << quietOut << quietErr;
      EXPECT_EQ(quietErr ? "" : "to-stderr\n", complained) << quietOut << quietErr;
    }
  }
}

}  // namespace
