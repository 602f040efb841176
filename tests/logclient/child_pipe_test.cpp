// The shell-less child pipe, driven with ordinary commands.
#include <gtest/gtest.h>

#include <cerrno>

#include "logclient/logclient.h"
#include "support/fixtures.h"

TEST(ChildPipe, ExpandsAbsolutePatternsOnlyAndKeepsOnesThatMatchNothing) {
  testsupport::TempDir dir;
  testsupport::WriteFile(dir / "a1", "");
  testsupport::WriteFile(dir / "a2", "");
  std::string program = "printf", format = "%s\\n", pattern = dir.str() + "/a*", none = dir.str() + "/none*",
              log = "*.log";
  char* argv[] = {program.data(), format.data(), pattern.data(), none.data(), log.data(), nullptr};
  pid_t pid = 0;
  FILE* stream = child_popen(argv, "r", &pid);
  ASSERT_NE(stream, nullptr);
  std::string output;
  for (int c; (c = fgetc(stream)) != EOF;) output += static_cast<char>(c);
  EXPECT_EQ(output, dir.str() + "/a1\n" + dir.str() + "/a2\n" + none + "\n*.log\n");
  EXPECT_EQ(child_pclose(stream, pid), 0);
}

TEST(ChildPipe, RefusesEveryModeButRAndWAndSilencesWhatItIsAskedTo) {
  std::string program = "sh", flag = "-c", script = "echo out; echo err >&2";
  char* argv[] = {program.data(), flag.data(), script.data(), nullptr};
  pid_t pid = 0;
  child_pipe_error error{};
  for (std::string mode : {"rw", "R", "", "W"}) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(child_popen_ex(argv, mode.c_str(), &pid, 0, 0, &error), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              ": 93 Invalid Parameter mode \"[" + mode + "]\", only allow \"r\" or \"w\"\n");
    EXPECT_TRUE(error.stage == CHILD_PIPE_STAGE_MODE && error.saved_errno == EINVAL && pid == 0) << mode;
  }
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  FILE* quiet = child_popen_quiet(argv, "w", &pid, 1, 1);
  EXPECT_EQ(child_pclose(quiet, pid), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
}
