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

TEST_F(RunnerTest, ExitAndSignalAreJudgedAgainstTheExpectedCode) {
  CaptureStderr();
  EXPECT_TRUE(app_->RunCommand({"sh", "-c", "exit 3"}, 3));
  EXPECT_FALSE(app_->RunCommand({"true"}, 4));
  EXPECT_FALSE(app_->RunCommand({"sh", "-c", "kill -9 $$"}, 0));
  // No shell between: the blank and the semicolon stay in one word.
  EXPECT_TRUE(app_->RunCommand({"touch", (scratch_ / "a b;touch c").string()}, 0));
  EXPECT_EQ(GetCapturedStderr(),
            "Child process terminated with exit status: 0\nChild process terminated with signal: 9\n");
  EXPECT_TRUE(fs::exists(scratch_ / "a b;touch c"));
  EXPECT_FALSE(fs::exists(scratch_ / "a"));
}

TEST_F(RunnerTest, UnreapableOrUnstartableChildIsFalseWithoutALine) {
  const fs::path err = scratch_ / "stderr.txt";
  // With SIGCHLD ignored the kernel reaps the child, so the wait fails.
  EXPECT_EQ(RunInChild([&] { signal(SIGCHLD, SIG_IGN); return app_->RunCommand({"true"}, 0) ? 1 : 0; }, err), 0);
  EXPECT_EQ(testsupport::ReadFile(err), "");
  const auto noDescriptors = [&] {
    rlimit none{3, 3};
    setrlimit(RLIMIT_NOFILE, &none);
    return app_->RunCommand({"true"}, 0) ? 1 : 0;
  };
  EXPECT_EQ(RunInChild(noDescriptors, err), 0);
  EXPECT_EQ(testsupport::ReadFile(err).find("Child process terminated"), std::string::npos);
}

TEST_F(RunnerTest, CopyFileMakesOneMissingParentLevelOnly) {
  const fs::path source = scratch_ / "source.log";
  testsupport::WriteFile(source, "line one\n");
  EXPECT_TRUE(app_->CopyFile(source, scratch_ / "new" / "copy.log"));
  EXPECT_EQ(testsupport::ReadFile(scratch_ / "new" / "copy.log"), "line one\n");
  try {
    app_->CopyFile(source, scratch_ / "gone" / "deeper" / "copy.log");
    ADD_FAILURE() << "two missing levels must not be made";
  } catch (const fs::filesystem_error& error) {
    EXPECT_NE(std::string(error.what()).find("cannot create directory"), std::string::npos) << error.what();
  }
  EXPECT_FALSE(fs::exists(scratch_ / "gone"));
}

TEST_F(RunnerTest, CopiesBelongToTheCallerWithDefaultMode) {
  const fs::path source = scratch_ / "owned-by-nobody.log", copy = scratch_ / "copy.log";
  testsupport::WriteFile(source, "secret\n", 0600);
  ASSERT_EQ(chown(source.c_str(), testsupport::NobodyUid(), testsupport::NobodyGid()), 0);
  const mode_t mask = umask(022);
  umask(mask);
  EXPECT_TRUE(app_->CopyFile(source, copy));
  struct stat info {};
  ASSERT_EQ(stat(copy.c_str(), &info), 0);
  EXPECT_EQ(info.st_uid, getuid());
  EXPECT_EQ(info.st_mode & 07777, 0666 & ~mask);
}

}  // namespace
}  // namespace collecttest
