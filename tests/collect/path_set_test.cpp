// The thirty paths every flow works on, fixed when App is built.
#include "engine_fixture.h"

namespace collecttest {
namespace {

using PathSetTest = EngineTest;

TEST_F(PathSetTest, FolderConstantsAreAppendedAndFileNamesJoined) {
  const std::string home = home_.string();
  const std::string issue = home + "/.ORBClient/logs/issuereproduce/";
  const std::string logs = home + "/.ORBClient/logs/";
  EXPECT_EQ(app_->homeFolder, home_);
  EXPECT_EQ(app_->issueFolder.string(), issue);
  EXPECT_EQ(app_->logsFolder.string(), logs);
  EXPECT_EQ(app_->issueArchive.string(), issue + "NorvexDeskline-IssueLogs.tar.gz");
  EXPECT_EQ(app_->existingArchive.string(), logs + "NorvexDeskline-ExistingLogs.tar.gz");
  EXPECT_EQ(app_->tempListFile.string(), home + "/temp_file_name.txt");
  EXPECT_EQ(app_->issueKvlogPattern.string(), issue + "kvlog*");
  EXPECT_EQ(app_->existingActivityLogPattern.string(), logs + "userActivitylog*");
  // The two second names are the very same files.
  EXPECT_EQ(app_->issueClientLogCopy, app_->issueClientLog);
  EXPECT_EQ(app_->existingClientLogCopy, app_->existingClientLog);
  EXPECT_EQ(app_->keywardConfigCopy.string(), logs + "KeywardConfig.xml");
  EXPECT_EQ(app_->envdumpTool.string(), root_.string() + "/util/envdump");
  EXPECT_EQ(app_->desklineCheckScript.string(), root_.string() + "/util/desklinecheck.sh");
  EXPECT_TRUE(app_->savedLogsLocation.empty());
}

TEST_F(PathSetTest, HomeWithTrailingSlashDoublesOnlyTheFolderSeparator) {
  const std::string home = home_.string() + "/";
  testsupport::ScopedEnv slashHome("HOME", home.c_str());
  App app;
  EXPECT_EQ(app.issueFolder.string(), home + "/.ORBClient/logs/issuereproduce/");
  EXPECT_EQ(app.logsFolder.string(), home + "/.ORBClient/logs/");
  // Joined file names never double a separator.
  EXPECT_EQ(app.tempListFile.string(), home + "temp_file_name.txt");
  EXPECT_EQ(app.issueSystemInfo.string(), home + "/.ORBClient/logs/issuereproduce/UserSystemInfo.txt");
}

TEST_F(PathSetTest, InstallRootWithTrailingSlashIsTakenAsItStands) {
  const std::string root = root_.string() + "/";
  testsupport::ScopedEnv slashRoot("ORBROOT", root.c_str());
  App app;
  EXPECT_EQ(app.installRoot.string(), root);
  EXPECT_EQ(app.envdumpTool.string(), root + "/util/envdump");
  EXPECT_EQ(app.desklineCheckScript.string(), root + "/util/desklinecheck.sh");
}

}  // namespace
}  // namespace collecttest
