// The reports written into a collected folder.
#include <signal.h>
#include <spawn.h>
#include <sys/utsname.h>
#include <sys/wait.h>

#include "engine_fixture.h"
#include "host/install_root.h"
#include "host/os_identity.h"
#include "support/fake_root.h"
#include "support/files.h"

extern char** environ;

namespace collecttest {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;
using testsupport::ReadFile;

// A copy of sleep running under one of the watched process names.
class RunningCopy {
 public:
  explicit RunningCopy(const fs::path& program) {
    fs::copy_file("/bin/sleep", program);
    std::string path = program.string(), seconds = "300";
    char* argv[] = {path.data(), seconds.data(), nullptr};
    // posix_spawn returns once the new program runs, so pgrep can see it.
    if (posix_spawn(&pid_, path.c_str(), nullptr, nullptr, argv, environ) != 0) pid_ = -1;
  }
  ~RunningCopy() {
    if (pid_ > 0) kill(pid_, SIGKILL), waitpid(pid_, nullptr, 0);
  }
  pid_t pid_ = -1;
};

class DiagnosticsTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    testsupport::WriteFile(root_ / ("pkginf/Ver.core." + PlatformFolderName()), "VERSION=23.9.0.1\n");
    MakeClientFolders();
  }
  std::string Config() const { return ReadFile(root_ / "config/KeywardConfig.xml"); }
};

TEST_F(DiagnosticsTest, SystemInfoReportListsTheWatchedProcessesThatRun) {
  utsname names{};
  uname(&names);
  const std::string head = "##### User System Information ###### \n\nOS Version: " + std::string(names.release) +
                           "\nOS Detail: " + GetOsIdentification(&kDefaultOsQueryLimits) +
                           "\nNDC Version Installed: 23.9.0.1###### NDC Linux Processes ######\n\n";
  const fs::path report = app_->issueSystemInfo;
  testsupport::WriteFile(report, "an older and much longer report than the next one\n");
  app_->WriteUserSystemInfo(report);
  EXPECT_EQ(ReadFile(report), head);

  RunningCopy ledger(scratch_ / "SvcLedger");
  ASSERT_GT(ledger.pid_, 0);
  app_->WriteUserSystemInfo(report);
  EXPECT_EQ(ReadFile(report), head + "SvcLedger:" + std::to_string(ledger.pid_) + "\n\n");

  CaptureStdout();
  app_->WriteUserSystemInfo(scratch_ / "no-folder" / "UserSystemInfo.txt");
  EXPECT_EQ(GetCapturedStdout(), "Unable to open UserSystemInfo file.\n");
}

TEST_F(DiagnosticsTest, ConfigurationDestinationsAreCrossedBetweenTheTwoFolders) {
  testsupport::WriteFile(app_->issueEnvdumpReport, "an older dump, longer than the new one\n");
  app_->CollectDiagnostics(app_->issueFolder);
  EXPECT_EQ(ReadFile(app_->keywardConfigCopy), Config());
  EXPECT_FALSE(fs::exists(app_->issueClientLog));
  EXPECT_EQ(ReadFile(app_->issueEnvdumpReport), "dump of the environment\n");
  EXPECT_EQ(ReadFile(app_->issueDesklineCheckReport), "all checks passed\n");
  EXPECT_FALSE(fs::exists(app_->existingSystemInfo));

  fs::remove(app_->keywardConfigCopy);
  app_->CollectDiagnostics(app_->logsFolder);
  EXPECT_EQ(ReadFile(app_->issueClientLogCopy), Config());
  EXPECT_FALSE(fs::exists(app_->keywardConfigCopy));
  EXPECT_EQ(ReadFile(app_->existingEnvdumpReport), "dump of the environment\n");
  EXPECT_TRUE(fs::exists(app_->existingSystemInfo));
}

TEST_F(DiagnosticsTest, AnyOtherFolderGetsNoReports) {
  // Component-wise equality: without its final separator it is another path.
  app_->CollectDiagnostics(app_->issueFolder.parent_path());
  app_->CollectDiagnostics(home_);
  EXPECT_TRUE(fs::is_empty(app_->issueFolder));
  EXPECT_FALSE(fs::exists(app_->keywardConfigCopy));
  EXPECT_FALSE(fs::exists(app_->existingSystemInfo));
}

TEST_F(DiagnosticsTest, MissingDumpOrFailingCheckIsFalse) {
  testsupport::WriteScript(root_ / "util/envdump", "echo " + (scratch_ / "never-written.txt").string());
  CaptureStderr();
  EXPECT_FALSE(app_->RunEnvdump(app_->issueEnvdumpReport));
  const std::string err = GetCapturedStderr();
  EXPECT_EQ(err.rfind("Error copying file: ", 0), 0u) << err;
  EXPECT_NE(err.find("never-written.txt"), std::string::npos) << err;
  EXPECT_FALSE(fs::exists(app_->issueEnvdumpReport));

  testsupport::WriteScript(root_ / "util/desklinecheck.sh", "echo partial\nexit 1");
  EXPECT_FALSE(app_->RunDesklineCheck(app_->issueDesklineCheckReport));
  // Nothing is quoted, so a blank in the install root breaks the command.
  const fs::path blankRoot = scratch_ / "client root";
  testsupport::MakeFakeInstallRoot(blankRoot);
  testsupport::WriteScript(blankRoot / "util/desklinecheck.sh", "echo all checks passed");
  testsupport::ScopedEnv rootEnv("ORBROOT", blankRoot.c_str());
  App blank;
  ASSERT_EQ(blank.installRoot, blankRoot);
  CaptureStderr();
  EXPECT_FALSE(blank.RunDesklineCheck(blank.issueDesklineCheckReport));
  GetCapturedStderr();
  EXPECT_EQ(ReadFile(blank.issueDesklineCheckReport), "");
}

}  // namespace
}  // namespace collecttest
