// What the flows do to files, on an App over a scratch HOME and a fake client
// install root, so that no case touches the runner's own home, /var/log or /opt.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/utsname.h>

#include <algorithm>
#include <set>

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
  // The opener is looked for, not run.
  LinkSystemTools(scratch_ / "bin", {"which"});
  ScopedEnv path("PATH", (scratch_ / "bin").c_str());
  EXPECT_FALSE(app_.IsXdgOpenAvailable());
  WriteScript(scratch_ / "bin/xdg-open", "exit 1");
  EXPECT_TRUE(app_.IsXdgOpenAvailable());
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

TEST_F(Engine, StagedLogsComeFromTheirSourcesAndAnySavedArchiveTakesOnlyThemAway) {
  fs::remove_all(home_ / ".ORBClient");
  EXPECT_FALSE(app_.IssueReproduceFolderExists());
  EXPECT_TRUE(app_.CreateIssueReproduceFolder() && app_.IssueReproduceFolderExists());
  fs::remove(app_.issueFolder);
  WriteFile(app_.systemClientLog, "system");
  WriteFile(app_.existingClientLog, "user copy");
  WriteFile(app_.existingKeywardLog, "keyward");
  EXPECT_TRUE(app_.StageKeywardLog() && app_.StageClientLog());
  EXPECT_EQ(ReadFile(app_.issueClientLog) + ReadFile(app_.issueKeywardLog), "systemkeyward");
  for (const char* name : {"kvlog.1", "userActivitylog.2", "userActivity.3", "UserSystemInfo.txt"})
    WriteFile(app_.issueFolder / name, "x");
  WriteFile(app_.existingArchive, "archive");
  EXPECT_TRUE(app_.CopyChosenArchive(app_.existingArchive, scratch_ / "kept.tar.gz", nullptr));
  std::set<fs::path> left(fs::directory_iterator(app_.issueFolder), fs::directory_iterator());
  EXPECT_EQ(left, (std::set<fs::path>{app_.issueFolder / "UserSystemInfo.txt", app_.issueFolder / "userActivity.3"}));
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
  testing::internal::CaptureStderr();
  app_.FindFiles(scratch_ / "missing", "kvlog*", list);
  EXPECT_NE(testing::internal::GetCapturedStderr().find("Error executing find command.\n"), std::string::npos);
  EXPECT_TRUE(list.size() == 6 && fs::exists(app_.tempListFile)) << "the list file stays until the next listing";
}

TEST_F(Engine, ArchiveCodesNothingOneWrittenZeroFailedTwoAndKeepsBaseNames) {
  const fs::path one = scratch_ / "one/same.log", two = scratch_ / "two/same.log", archive = scratch_ / "a.tar.gz";
  WriteFile(one, "1");
  WriteFile(two, "2");
  EXPECT_EQ(app_.CreateArchive({}, archive) + app_.CreateArchive({scratch_ / "gone"}, archive), 2);
  EXPECT_FALSE(fs::exists(archive));
  EXPECT_EQ(app_.CreateArchive({one, scratch_ / "gone", two}, archive), 0);
  EXPECT_EQ(RunAndCapture("tar -tzf " + archive.string()), "same.log\nsame.log\n");
  EXPECT_EQ(app_.CreateArchive({one}, (scratch_ / "gone/a.tar.gz").string()), 2);
}

TEST(ArchiveTime, ReadsOnTheTwelveHourClockWithoutAmPm) {
  const std::time_t when = 1714568709;  // 2024-05-01 13:05:09 UTC
  std::tm utc{};
  EXPECT_EQ(FormatTimestamp(*gmtime_r(&when, &utc)), "Wednesday, May 01, 2024, 01:05:09 GMT (+0000)");
}

TEST_F(Engine, SystemReportListsTheWatchedProcessesThatRunInOrder) {
  WriteFile(root_ / ("pkginf/Ver.core." + PlatformFolderName()), "VERSION=23.9.0.1\n");
  // A pgrep of our own, so that what runs on the machine does not matter.
  WriteScript(scratch_ / "bin/pgrep", "case $1 in shelfscan) ;; KeywardDaemon) echo 7; echo 8;; *) echo ${#1};; esac");
  ScopedEnv path("PATH", (scratch_.str() + "/bin:" + getenv("PATH")).c_str());
  utsname names{};
  uname(&names);
  app_.WriteUserSystemInfo(app_.issueSystemInfo);
  EXPECT_EQ(ReadFile(app_.issueSystemInfo),
            "##### User System Information ###### \n\nOS Version: " + std::string(names.release) + "\nOS Detail: " +
                GetOsIdentification(&kDefaultOsQueryLimits) +
                "\nNDC Version Installed: 23.9.0.1###### NDC Linux Processes ######\n\n"
                "KeywardDaemon:7\n8\n\nappshelf:8\n\nSvcLedger:9\n\n");
  testing::internal::CaptureStdout();
  app_.WriteUserSystemInfo(scratch_ / "gone/UserSystemInfo.txt");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Unable to open UserSystemInfo file.\n");
}

TEST_F(Engine, DiagnosticsFillTheCollectedFolderWhateverStepFailsAndCrossTheConfigurations) {
  WriteFile(scratch_ / "dump.txt", "environment");
  WriteScript(root_ / "util/envdump", "printf '" + scratch_.str() + "/du\\r\\nmp.txt\\r\\n'");
  WriteScript(root_ / "util/desklinecheck.sh", "echo checked");
  app_.CollectDiagnostics(scratch_.path());
  EXPECT_FALSE(fs::exists(app_.existingEnvdumpReport)) << "another folder gets nothing";
  app_.CollectDiagnostics(app_.issueFolder);  // with no configuration to stage
  WriteFile(root_ / "config/KeywardConfig.xml", "config");
  app_.CollectDiagnostics(app_.logsFolder);
  app_.CollectDiagnostics(app_.logsFolder);  // reports are replaced, not added to
  for (const fs::path& folder : {app_.issueFolder, app_.logsFolder})
    EXPECT_EQ(ReadFile(folder / "Envdump.txt") + ReadFile(folder / "DesklineCheck.txt") +
                  std::to_string(fs::exists(folder / "UserSystemInfo.txt")), "environmentchecked\n1") << folder;
  EXPECT_TRUE(ReadFile(app_.issueClientLog) == "config" && !fs::exists(app_.keywardConfigCopy));
  testing::internal::CaptureStderr();
  EXPECT_FALSE(app_.RunEnvdump(scratch_ / "gone/Envdump.txt") || app_.RunDesklineCheck(scratch_ / "gone/check.txt"));
  EXPECT_NE(testing::internal::GetCapturedStderr().find("Error copying file: "), std::string::npos);
}
