// The command runner's verdicts and lines, and the copies built on it.
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine_fixture.h"
#include "support/files.h"
#include "support/privileges.h"

namespace collecttest {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using RunnerTest = EngineTest;

TEST_F(RunnerTest, ExitCodesAreJudgedAgainstTheExpectedOne) {
  CaptureStderr();
  EXPECT_TRUE(app_->RunCommand({"sh", "-c", "exit 0"}, 0));
  EXPECT_TRUE(app_->RunCommand({"sh", "-c", "exit 3"}, 3));
  EXPECT_EQ(GetCapturedStderr(), "");

  CaptureStderr();
  EXPECT_FALSE(app_->RunCommand({"sh", "-c", "exit 1"}, 0));
  EXPECT_FALSE(app_->RunCommand({"true"}, 4));
  EXPECT_EQ(GetCapturedStderr(),
            "Child process terminated with exit status: 1\n"
            "Child process terminated with exit status: 0\n");
}

TEST_F(RunnerTest, AKilledChildNamesItsSignal) {
  CaptureStderr();
  EXPECT_FALSE(app_->RunCommand({"sh", "-c", "kill -9 $$"}, 0));
  EXPECT_EQ(GetCapturedStderr(), "Child process terminated with signal: 9\n");
}

TEST_F(RunnerTest, WordsReachTheChildWithoutAShell) {
  const fs::path odd = scratch_ / "a b;touch c";
  EXPECT_TRUE(app_->RunCommand({"touch", odd.string()}, 0));
  EXPECT_TRUE(fs::exists(odd));
  EXPECT_FALSE(fs::exists(scratch_ / "a"));
}

TEST_F(RunnerTest, AnUnreapableChildIsFalseWithoutALine) {
  // With SIGCHLD ignored the child is reaped by the kernel, so the wait
  // fails and the status reads as "stopped".
  const fs::path err = scratch_ / "stderr.txt";
  const int verdict = RunInChild(
      [&] {
        signal(SIGCHLD, SIG_IGN);
        return app_->RunCommand({"true"}, 0) ? 1 : 0;
      },
      err);
  EXPECT_EQ(verdict, 0);
  EXPECT_EQ(testsupport::ReadFile(err), "");
}

TEST_F(RunnerTest, AChildThatCannotBeStartedIsFalseWithoutAStatusLine) {
  const fs::path err = scratch_ / "stderr.txt";
  const int verdict = RunInChild(
      [&] {
        // No descriptors left for the pipe.
        rlimit none{3, 3};
        setrlimit(RLIMIT_NOFILE, &none);
        return app_->RunCommand({"true"}, 0) ? 1 : 0;
      },
      err);
  EXPECT_EQ(verdict, 0);
  EXPECT_EQ(testsupport::ReadFile(err).find("Child process terminated"), std::string::npos);
}

TEST_F(RunnerTest, XdgOpenIsLookedUpOnPath) {
  UseToolsOnly({"which", "sh"});
  CaptureStderr();
  EXPECT_FALSE(app_->IsXdgOpenAvailable());
  GetCapturedStderr();
  testsupport::WriteScript(Bin() / "xdg-open", "exit 0");
  EXPECT_TRUE(app_->IsXdgOpenAvailable());
}

TEST_F(RunnerTest, CopyFileMakesOneMissingParentLevel) {
  const fs::path source = scratch_ / "source.log";
  testsupport::WriteFile(source, "line one\n");
  const fs::path oneDeep = scratch_ / "new" / "copy.log";
  EXPECT_TRUE(app_->CopyFile(source, oneDeep));
  EXPECT_EQ(testsupport::ReadFile(oneDeep), "line one\n");

  const fs::path twoDeep = scratch_ / "gone" / "deeper" / "copy.log";
  try {
    app_->CopyFile(source, twoDeep);
    ADD_FAILURE() << "two missing levels must not be made";
  } catch (const fs::filesystem_error& error) {
    EXPECT_NE(std::string(error.what()).find("cannot create directory"), std::string::npos) << error.what();
  }
  EXPECT_FALSE(fs::exists(scratch_ / "gone"));
}

TEST_F(RunnerTest, CopiesBelongToTheCallerWithDefaultMode) {
  const fs::path source = scratch_ / "owned-by-nobody.log";
  testsupport::WriteFile(source, "secret\n", 0600);
  ASSERT_EQ(chown(source.c_str(), testsupport::NobodyUid(), testsupport::NobodyGid()), 0);
  const mode_t mask = umask(022);
  umask(mask);

  const fs::path copy = scratch_ / "copy.log";
  EXPECT_TRUE(app_->CopyFile(source, copy));
  struct stat info {};
  ASSERT_EQ(stat(copy.c_str(), &info), 0);
  EXPECT_EQ(info.st_uid, getuid());
  EXPECT_EQ(info.st_mode & 07777, 0666 & ~mask);
  EXPECT_EQ(testsupport::ReadFile(copy), "secret\n");
}

TEST_F(RunnerTest, RemoveStagedFilesTakesTheFourStagedKindsOnly) {
  MakeClientFolders();
  const fs::path issue = app_->issueFolder;
  for (const char* name : {"ORBClient.log", "KeywardSvr.latest", "kvlog.latest", "kvlog.1", "userActivitylog.latest",
                           "userActivitylog.2", "UserSystemInfo.txt", "Envdump.txt"})
    testsupport::WriteFile(issue / name, "x");
  EXPECT_TRUE(app_->RemoveStagedFiles());
  std::vector<std::string> left;
  for (const auto& entry : fs::directory_iterator(issue)) left.push_back(entry.path().filename().string());
  std::sort(left.begin(), left.end());
  EXPECT_EQ(left, (std::vector<std::string>{"Envdump.txt", "UserSystemInfo.txt"}));
}

}  // namespace
}  // namespace collecttest
