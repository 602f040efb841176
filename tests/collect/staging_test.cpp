// The issue folder, the recent-logs question and the kvlog marker.
#include "engine_fixture.h"
#include "support/files.h"

namespace collecttest {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using StagingTest = EngineTest;

TEST_F(StagingTest, IssueFolderIsMadeWithEveryLevelAndAFileInItsPlaceIsNoFolder) {
  EXPECT_FALSE(app_->IssueReproduceFolderExists());
  EXPECT_TRUE(app_->CreateIssueReproduceFolder());
  EXPECT_TRUE(app_->IssueReproduceFolderExists());
  EXPECT_TRUE(app_->CreateIssueReproduceFolder());

  fs::remove_all(app_->issueFolder);
  testsupport::WriteFile(app_->logsFolder / "issuereproduce", "not a folder");
  EXPECT_FALSE(app_->IssueReproduceFolderExists());
  CaptureStderr();
  EXPECT_FALSE(app_->CreateIssueReproduceFolder());
  EXPECT_NE(GetCapturedStderr().find("Child process terminated with exit status: 1\n"), std::string::npos);
}

TEST_F(StagingTest, EachLatestFileAloneCountsAsRecentLogsAndNothingElse) {
  MakeClientFolders();
  for (const char* name : {"kvlog.1", "userActivitylog.3", "UserSystemInfo.txt", "NorvexDeskline-IssueLogs.tar.gz"})
    testsupport::WriteFile(app_->issueFolder / name, "x");
  CaptureStderr();
  EXPECT_FALSE(app_->RecentLogsExist());
  for (const fs::path* file : {&app_->issueClientLog, &app_->issueKeywardLog, &app_->issueKvlogLatest,
                               &app_->issueActivityLogLatest}) {
    testsupport::WriteFile(*file, "earlier run\n");
    EXPECT_TRUE(app_->RecentLogsExist()) << *file;
    fs::remove(*file);
  }
  // No system client log to refresh from: only a status line.
  EXPECT_NE(GetCapturedStderr().find("Child process terminated with exit status: 1\n"), std::string::npos);
  EXPECT_FALSE(fs::exists(app_->existingClientLog));
}

TEST_F(StagingTest, TheClientLogIsRefreshedWhateverTheAnswer) {
  MakeClientFolders();
  testsupport::WriteFile(app_->systemClientLog, "fresh system log\n");
  testsupport::WriteFile(app_->existingClientLog, "stale copy\n");
  EXPECT_FALSE(app_->RecentLogsExist());
  EXPECT_EQ(testsupport::ReadFile(app_->existingClientLog), "fresh system log\n");
  testsupport::WriteFile(app_->existingKeywardLog, "keyward\n");
  fs::remove_all(app_->issueFolder);
  EXPECT_TRUE(app_->StageKeywardLog());
  EXPECT_TRUE(app_->StageClientLog());
  EXPECT_EQ(testsupport::ReadFile(app_->issueKeywardLog), "keyward\n");
  EXPECT_EQ(testsupport::ReadFile(app_->issueClientLog), "fresh system log\n");
}

TEST_F(StagingTest, MarkerIsCreatedEmptyKeptAsFoundAndRemoved) {
  fs::create_directories(home_ / ".ORBClient");
  const fs::path marker = home_ / ".ORBClient/.kvlogEnabled";
  EXPECT_TRUE(app_->EnableKvlog());
  ASSERT_TRUE(fs::exists(marker));
  EXPECT_EQ(fs::file_size(marker), 0u);
  testsupport::WriteFile(marker, "left by the client");
  EXPECT_TRUE(app_->EnableKvlog());
  EXPECT_EQ(testsupport::ReadFile(marker), "left by the client");
  EXPECT_TRUE(app_->DisableKvlog());
  EXPECT_FALSE(fs::exists(marker));
  EXPECT_TRUE(app_->DisableKvlog());
}

}  // namespace
}  // namespace collecttest
