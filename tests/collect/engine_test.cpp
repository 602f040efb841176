// What the flows do to files, on an App over a scratch HOME and a fake client
// install root, so that no case touches the runner's own home, /var/log or /opt.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/utsname.h>

#include <algorithm>

#include "app/app.h"
#include "collect/timestamp.h"
#include "host/install_root.h"
#include "host/os_identity.h"
#include "support/fake_root.h"
#include "support/fixtures.h"

namespace fs = std::filesystem;
using namespace testsupport;

class Engine : public testing::Test {
 protected:
  Engine() {
    app_.systemClientLog = scratch_ / "system.log";
    fs::create_directories(app_.issueFolder);
  }
  TempDir scratch_;
  fs::path home_ = scratch_ / "home", root_ = scratch_ / "root";
  bool rootMade_ = (MakeFakeInstallRoot(root_), true);  // before App looks for it
  ScopedEnv homeEnv_{"HOME", home_.c_str()}, rootEnv_{"ORBROOT", root_.c_str()};
  App app_;
};

TEST_F(Engine, RunnerJudgesExitCodesAndSignalsAndPassesWordsWithoutAShell) {
  testing::internal::CaptureStderr();
  EXPECT_TRUE(app_.RunCommand({"sh", "-c", "exit 3"}, 3));
  EXPECT_FALSE(app_.RunCommand({"false"}, 0));
  EXPECT_FALSE(app_.RunCommand({"sh", "-c", "kill -9 $$"}, 0));
  EXPECT_TRUE(app_.RunCommand({"touch", (scratch_ / "a b;c").string()}, 0));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Child process terminated with exit status: 1\nChild process terminated with signal: 9\n");
  EXPECT_TRUE(fs::exists(scratch_ / "a b;c"));
}

TEST_F(Engine, CopiesAreTheUsersWithDefaultModeAndMakeOneMissingFolderLevel) {
  const fs::path source = scratch_ / "service.log", copy = scratch_ / "new/copy.log";
  WriteFile(source, "line\n", 0600);
  // As root, a service account's log.
  EXPECT_TRUE(geteuid() != 0 || chown(source.c_str(), 12345, 12345) == 0);
  const mode_t mask = umask(022);
  EXPECT_TRUE(app_.CopyFile(source, copy));
  umask(mask);
  struct stat info {};
  ASSERT_EQ(stat(copy.c_str(), &info), 0);
  EXPECT_EQ(info.st_uid, getuid());
  EXPECT_EQ(info.st_mode & 0777, 0644u);
  EXPECT_THROW(app_.CopyFile(source, scratch_ / "gone/deeper/copy.log"), fs::filesystem_error);
}

TEST_F(Engine, EachLatestFileAloneMeansRecentLogsAndTheMarkerIsKeptAsFound) {
  WriteFile(app_.systemClientLog, "fresh\n");
  WriteFile(app_.issueFolder / "kvlog.1", "not a latest file");
  EXPECT_FALSE(app_.RecentLogsExist());
  EXPECT_EQ(ReadFile(app_.existingClientLog), "fresh\n") << "refreshed whatever the answer";
  for (const fs::path* file : {&app_.issueClientLog, &app_.issueKeywardLog, &app_.issueKvlogLatest,
                               &app_.issueActivityLogLatest}) {
    WriteFile(*file, "earlier run\n");
    EXPECT_TRUE(app_.RecentLogsExist()) << *file;
    fs::remove(*file);
  }
  const fs::path marker = home_ / ".ORBClient/.kvlogEnabled";
  WriteFile(marker, "left by the client");
  EXPECT_TRUE(app_.EnableKvlog());
  EXPECT_EQ(ReadFile(marker), "left by the client");
  EXPECT_TRUE(app_.DisableKvlog() && app_.DisableKvlog()) << "a missing marker is no error";
  EXPECT_TRUE(app_.EnableKvlog() && fs::is_empty(marker));
}

TEST_F(Engine, ListingTakesTheWholeActivityFamilyFirstAndSplitsAtLineFeedsOnly) {
  const std::string logs = app_.logsFolder.string(), issue = app_.issueFolder.string();
  for (const std::string& name : {logs + "kvlog.2", logs + "userActivityTrace", logs + "ORBClient.log",
                                  issue + "kvlog.cr\r", issue + "kvlog.two\nlines"})
    WriteFile(name, "x");
  App::FileList list{"/listed/before"};
  app_.FindActivityAndKvlogs(list, app_.logsFolder);
  EXPECT_FALSE(fs::exists(app_.tempListFile));
  ASSERT_EQ(list.size(), 6u);
  std::sort(list.begin() + 2, list.end());
  EXPECT_EQ(list, (App::FileList{"/listed/before", logs + "userActivityTrace", "lines", issue + "kvlog.cr\r",
                                 issue + "kvlog.two", logs + "kvlog.2"}));
}

TEST(ArchiveTime, ReadsOnTheTwelveHourClockWithoutAmPm) {
  const std::time_t when = 1714568709;  // 2024-05-01 13:05:09 UTC
  std::tm utc{};
  EXPECT_EQ(FormatTimestamp(*gmtime_r(&when, &utc)), "Wednesday, May 01, 2024, 01:05:09 GMT (+0000)");
}

TEST_F(Engine, SystemReportListsTheWatchedProcessesThatRunInOrder) {
  WriteFile(root_ / ("pkginf/Ver.core." + PlatformFolderName()), "VERSION=23.9.0.1\n");
  // A pgrep of our own, so that what runs on the machine does not matter.
  WriteScript(scratch_ / "bin/pgrep", "case $1 in SvcLedger) echo 42;; KeywardDaemon) echo 7; echo 8;; esac");
  ScopedEnv path("PATH", (scratch_.str() + "/bin:" + getenv("PATH")).c_str());
  utsname names{};
  uname(&names);
  app_.WriteUserSystemInfo(app_.issueSystemInfo);
  EXPECT_EQ(ReadFile(app_.issueSystemInfo),
            "##### User System Information ###### \n\nOS Version: " + std::string(names.release) + "\nOS Detail: " +
                GetOsIdentification(&kDefaultOsQueryLimits) +
                "\nNDC Version Installed: 23.9.0.1###### NDC Linux Processes ######\n\n"
                "KeywardDaemon:7\n8\n\nSvcLedger:42\n\n");
}
