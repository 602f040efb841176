// The paths every flow works on, fixed when App is built.
#include "engine_fixture.h"

namespace collecttest {
namespace {

using PathSetTest = EngineTest;

TEST_F(PathSetTest, FolderConstantsAreAppendedAndFileNamesJoined) {
  const std::string home = home_.string();
  const std::string issue = home + "/.ORBClient/logs/issuereproduce/";
  const std::string logs = home + "/.ORBClient/logs/";
  EXPECT_EQ(app_->issueFolder.string(), issue);
  EXPECT_EQ(app_->issueArchive.string(), issue + "NorvexDeskline-IssueLogs.tar.gz");
  EXPECT_EQ(app_->existingArchive.string(), logs + "NorvexDeskline-ExistingLogs.tar.gz");
  EXPECT_EQ(app_->tempListFile.string(), home + "/temp_file_name.txt");
  EXPECT_EQ(app_->issueKvlogPattern.string(), issue + "kvlog*");
  EXPECT_EQ(app_->keywardConfigCopy.string(), logs + "KeywardConfig.xml");
  EXPECT_EQ(app_->envdumpTool.string(), root_.string() + "/util/envdump");
}

TEST_F(PathSetTest, TrailingSlashesDoubleOnlyTheFolderSeparators) {
  const std::string home = home_.string() + "/", root = root_.string() + "/";
  testsupport::ScopedEnv slashHome("HOME", home.c_str());
  testsupport::ScopedEnv slashRoot("ORBROOT", root.c_str());
  App app;
  EXPECT_EQ(app.issueFolder.string(), home + "/.ORBClient/logs/issuereproduce/");
  EXPECT_EQ(app.tempListFile.string(), home + "temp_file_name.txt");
  EXPECT_EQ(app.issueSystemInfo.string(), home + "/.ORBClient/logs/issuereproduce/UserSystemInfo.txt");
  EXPECT_EQ(app.installRoot.string(), root);
  EXPECT_EQ(app.desklineCheckScript.string(), root + "/util/desklinecheck.sh");
}

}  // namespace
}  // namespace collecttest
