// Listing the log families with find, and copying logs into the issue folder.
#include <algorithm>

#include "engine_fixture.h"
#include "support/files.h"

namespace collecttest {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using GatheringTest = EngineTest;

std::vector<std::string> Sorted(const App::FileList& list, size_t from, size_t to) {
  std::vector<std::string> names(list.begin() + from, list.begin() + std::min(to, list.size()));
  std::sort(names.begin(), names.end());
  return names;
}

TEST_F(GatheringTest, ActivityLogsComeFirstThenKvlogsAndTheListFileGoes) {
  MakeClientFolders();
  const std::string logs = app_->logsFolder.string();
  // The wider "userActivity" family, not only "userActivitylog".
  for (const char* name : {"kvlog.2", "userActivitylog.1", "userActivityTrace", "ORBClient.log"})
    testsupport::WriteFile(logs + name, "x");
  CaptureStderr();
  App::FileList list{"/already/listed"};
  app_->FindActivityAndKvlogs(list, app_->logsFolder);
  app_->FindActivityAndKvlogs(list, app_->issueFolder);
  EXPECT_EQ(GetCapturedStderr(), "");
  ASSERT_EQ(list.size(), 4u);
  EXPECT_EQ(list[0], "/already/listed");
  EXPECT_EQ(Sorted(list, 1, 3), (std::vector<std::string>{logs + "userActivityTrace", logs + "userActivitylog.1"}));
  EXPECT_EQ(list[3], logs + "kvlog.2");
  EXPECT_FALSE(fs::exists(app_->tempListFile));
}

TEST_F(GatheringTest, ListingRecursesTakesFilesOnlyAndSplitsAtLineFeedsOnly) {
  MakeClientFolders();
  const std::string issue = app_->issueFolder.string();
  for (const char* name : {"kvlog.latest", "kvlog.cr\r", "kvlog.two\nlines"}) testsupport::WriteFile(issue + name, "x");
  fs::create_directories(app_->logsFolder / "kvlog.folder");
  App::FileList list;
  app_->FindFiles(app_->logsFolder, "kvlog*", list);
  EXPECT_EQ(Sorted(list, 0, list.size()),
            (std::vector<std::string>{issue + "kvlog.cr\r", issue + "kvlog.latest", issue + "kvlog.two", "lines"}));
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

}  // namespace
}  // namespace collecttest
