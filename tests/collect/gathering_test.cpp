// Listing the log families with find, and copying logs into the issue folder.
#include <algorithm>

#include "engine_fixture.h"
#include "support/files.h"

namespace collecttest {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using GatheringTest = EngineTest;

std::vector<std::string> Names(const App::FileList& list, size_t from, size_t to) {
  std::vector<std::string> names;
  for (size_t i = from; i < to && i < list.size(); ++i) names.push_back(list[i].filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

TEST_F(GatheringTest, ActivityLogsComeFirstThenKvlogs) {
  MakeClientFolders();
  const fs::path logs = app_->logsFolder;
  // The listing takes the wider "userActivity" family, not only "userActivitylog".
  for (const char* name : {"kvlog.2", "userActivitylog.1", "userActivitylog.latest", "userActivityTrace", "ORBClient.log"})
    testsupport::WriteFile(logs / name, "x");
  App::FileList list{"/already/listed"};
  app_->FindActivityAndKvlogs(list, logs);
  ASSERT_EQ(list.size(), 5u);
  EXPECT_EQ(list[0], "/already/listed");
  EXPECT_EQ(Names(list, 1, 4),
            (std::vector<std::string>{"userActivityTrace", "userActivitylog.1", "userActivitylog.latest"}));
  EXPECT_EQ(list[4], logs / "kvlog.2");
  EXPECT_FALSE(fs::exists(app_->tempListFile));
}

TEST_F(GatheringTest, ListingRecursesIntoTheIssueFolderAndTakesFilesOnly) {
  MakeClientFolders();
  testsupport::WriteFile(app_->issueFolder / "kvlog.latest", "x");
  fs::create_directories(app_->logsFolder / "kvlog.folder");
  App::FileList list;
  app_->FindFiles(app_->logsFolder, "kvlog*", list);
  ASSERT_EQ(list.size(), 1u);
  EXPECT_EQ(list[0].string(), app_->logsFolder.string() + "issuereproduce/kvlog.latest");
}

TEST_F(GatheringTest, NoMatchAddsNothingAndSaysNothing) {
  MakeClientFolders();
  App::FileList list;
  CaptureStderr();
  app_->FindActivityAndKvlogs(list, app_->issueFolder);
  EXPECT_EQ(GetCapturedStderr(), "");
  EXPECT_TRUE(list.empty());
}

TEST_F(GatheringTest, AFailedFindKeepsTheListAndTheListFile) {
  App::FileList list{"/kept"};
  CaptureStderr();
  app_->FindFiles(home_ / "no-such-folder", "kvlog*", list);
  const std::string err = GetCapturedStderr();
  EXPECT_NE(err.find("Error executing find command.\n"), std::string::npos) << err;
  EXPECT_EQ(list, App::FileList{"/kept"});
  EXPECT_TRUE(fs::exists(app_->tempListFile));
}

TEST_F(GatheringTest, OnlyLineFeedsSplitNames) {
  MakeClientFolders();
  testsupport::WriteFile(app_->issueFolder / "kvlog.cr\r", "x");
  testsupport::WriteFile(app_->issueFolder / "kvlog.two\nlines", "x");
  App::FileList list;
  app_->FindFiles(app_->issueFolder, "kvlog*", list);
  std::vector<std::string> got;
  for (const auto& path : list) got.push_back(path.string());
  std::sort(got.begin(), got.end());
  const std::string issue = app_->issueFolder.string();
  EXPECT_EQ(got, (std::vector<std::string>{issue + "kvlog.cr\r", issue + "kvlog.two", "lines"}));
}

TEST_F(GatheringTest, FamiliesAreCopiedIntoTheIssueFolder) {
  MakeClientFolders();
  for (const char* name : {"kvlog.1", "kvlog.latest", "userActivitylog.latest", "ORBClient.log"})
    testsupport::WriteFile(app_->logsFolder / name, name);
  EXPECT_TRUE(app_->CopyActivityLogsToIssueFolder());
  EXPECT_TRUE(app_->CopyKvlogsToIssueFolder());
  for (const char* name : {"kvlog.1", "kvlog.latest", "userActivitylog.latest"})
    EXPECT_EQ(testsupport::ReadFile(app_->issueFolder / name), name);
  EXPECT_FALSE(fs::exists(app_->issueFolder / "ORBClient.log"));
}

TEST_F(GatheringTest, KeywardConfigComesFromTheInstallRoot) {
  MakeClientFolders();
  const fs::path destination = app_->logsFolder / "KeywardConfig.xml";
  EXPECT_TRUE(app_->StageKeywardConfig(destination));
  EXPECT_EQ(testsupport::ReadFile(destination), testsupport::ReadFile(root_ / "config/KeywardConfig.xml"));

  fs::remove(root_ / "config/KeywardConfig.xml");
  CaptureStderr();
  EXPECT_FALSE(app_->StageKeywardConfig(destination));
  EXPECT_NE(GetCapturedStderr().find("Child process terminated with exit status: 1\n"), std::string::npos);
}

}  // namespace
}  // namespace collecttest
