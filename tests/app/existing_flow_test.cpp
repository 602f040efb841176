// The collect-existing flow through the window's "existing_log" button.
#include <gtest/gtest.h>

#include <algorithm>

#include "app_root.h"
#include "support/dialogs.h"
#include "support/files.h"
#include "window_fixture.h"

namespace apptest {
namespace {

using ExistingFlowTest = WindowTest;

TEST_F(ExistingFlowTest, SavedArchiveCarriesTheLogsAndTheConfigurationAsClientLog) {
  testsupport::WriteFile(LogsFolder() / "KeywardSvr.latest", "keyward\n");
  testsupport::WriteFile(LogsFolder() / "userActivitylog.1", "older activity\n");
  testsupport::WriteFile(LogsFolder() / "kvlog.3", "sibling\n");
  const std::filesystem::path target = scratch_ / "existing.tar.gz";
  std::string suggested;
  RunWindow([&](GtkWidget*) {
    testsupport::SaveAsInNextFileChooser(target, nullptr, &suggested);
    Click(app_->existingLogButton);
    EXPECT_TRUE(Visible(app_->saveButton));
    EXPECT_EQ(LabelText(app_->saveButton), "View saved logs");
    EXPECT_FALSE(Visible(app_->collectExistingText));
    EXPECT_EQ(LabelText(app_->stopText), "Click \"View saved logs\" to view the recently saved logs.");
    EXPECT_TRUE(Visible(app_->lastLogLabel));
  });
  EXPECT_EQ(suggested, "NorvexDeskline-ExistingLogs.tar.gz");
  EXPECT_EQ(app_->collecting, 0);
  auto members = ArchiveMembers(target);
  std::sort(members.begin(), members.end());
  EXPECT_EQ(members, (std::vector<std::string>{"DesklineCheck.txt", "Envdump.txt", "KeywardSvr.latest",
                                                "ORBClient.log", "UserSystemInfo.txt", "kvlog.3",
                                                "userActivitylog.1"}));
  // The issue folder's client log was just overwritten with the configuration.
  EXPECT_EQ(ArchiveMember(target, "ORBClient.log"), kKeywardConfigText);
}

TEST_F(ExistingFlowTest, NothingToArchiveNamesTheClientLogFile) {
  // Reports that cannot be written: each name leads into a missing folder.
  for (const char* report : {"UserSystemInfo.txt", "Envdump.txt", "DesklineCheck.txt"})
    std::filesystem::create_symlink(scratch_ / "missing" / report, LogsFolder() / report);
  std::filesystem::remove(root_ / "config/KeywardConfig.xml");
  testsupport::DialogRecord error;
  RunWindow([&](GtkWidget*) {
    testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, &error);
    Click(app_->existingLogButton);
  });
  ASSERT_TRUE(error.seen);
  EXPECT_EQ(error.message, "No files found at \"" + app_->existingClientLogCopy.string() +
                               "\".\nUnable to create the tar archive.");
  EXPECT_FALSE(std::filesystem::exists(app_->existingArchive));
  EXPECT_EQ(app_->saveButtonIsView, 0);
}

}  // namespace
}  // namespace apptest
