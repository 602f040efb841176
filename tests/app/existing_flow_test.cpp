// The collect-existing flow through the window's "existing_log" button.
#include <gtest/gtest.h>

#include <algorithm>

#include "app_root.h"
#include "support/dialogs.h"
#include "support/files.h"
#include "window_fixture.h"

namespace apptest {
namespace {

using testsupport::WriteFile;

class ExistingFlowTest : public WindowTest {
 protected:
  void Click(GtkWidget* button) { gtk_button_clicked(GTK_BUTTON(button)); }
  void WriteClientLogs() {
    WriteFile(LogsFolder() / "KeywardSvr.latest", "keyward\n");
    WriteFile(LogsFolder() / "userActivitylog.1", "older activity\n");
    WriteFile(LogsFolder() / "kvlog.3", "sibling\n");
  }
};

TEST_F(ExistingFlowTest, SavedArchiveCarriesTheLogsAndTheConfigurationAsClientLog) {
  WriteClientLogs();
  const std::filesystem::path target = scratch_ / "existing.tar.gz";
  bool chooserSeen = false;
  std::string suggested;
  RunWindow([&](GtkWidget*) {
    testsupport::SaveAsInNextFileChooser(target, &chooserSeen, &suggested);
    Click(app_->existingLogButton);
    EXPECT_TRUE(Visible(app_->saveButton));
    EXPECT_EQ(LabelText(app_->saveButton), "View saved logs");
    EXPECT_FALSE(Visible(app_->collectExistingText));
    EXPECT_EQ(LabelText(app_->stopText), "Click \"View saved logs\" to view the recently saved logs.");
    EXPECT_TRUE(Visible(app_->ruler));
    EXPECT_TRUE(Visible(app_->lastLogLabel));
  });
  ASSERT_TRUE(chooserSeen);
  EXPECT_EQ(suggested, "NorvexDeskline-ExistingLogs.tar.gz");
  EXPECT_EQ(app_->saveButtonIsView, 1);
  EXPECT_EQ(app_->collecting, 0);
  EXPECT_TRUE(std::filesystem::exists(app_->existingArchive));
  auto members = ArchiveMembers(target);
  std::sort(members.begin(), members.end());
  EXPECT_EQ(members, (std::vector<std::string>{"DesklineCheck.txt", "Envdump.txt", "KeywardSvr.latest",
                                                "ORBClient.log", "UserSystemInfo.txt", "kvlog.3",
                                                "userActivitylog.1"}));
  // The issue folder's client log was just overwritten with the configuration.
  EXPECT_EQ(ArchiveMember(target, "ORBClient.log"), kKeywardConfigText);
}

TEST_F(ExistingFlowTest, SecondCollectWhileViewingOnlyRefreshesTheLastSavedLine) {
  WriteClientLogs();
  RunWindow([&](GtkWidget*) {
    testsupport::SaveAsInNextFileChooser(scratch_ / "first.tar.gz");
    Click(app_->existingLogButton);
    ASSERT_EQ(app_->saveButtonIsView, 1);
    gtk_label_set_text(GTK_LABEL(app_->stopText), "hint left by the test");
    gtk_label_set_text(GTK_LABEL(app_->lastLogLabel), "stale");
    testsupport::SaveAsInNextFileChooser(scratch_ / "second.tar.gz");
    Click(app_->existingLogButton);
    EXPECT_EQ(LabelText(app_->stopText), "hint left by the test");
    EXPECT_EQ(LabelText(app_->lastLogLabel).rfind("Last saved log:  ", 0), 0u);
    EXPECT_EQ(LabelText(app_->saveButton), "View saved logs");
  });
  EXPECT_TRUE(std::filesystem::exists(scratch_ / "second.tar.gz"));
}

TEST_F(ExistingFlowTest, CancelledSaveChangesNothingInTheWindow) {
  WriteClientLogs();
  bool chooserSeen = false;
  RunWindow([&](GtkWidget*) {
    const std::string hintBefore = LabelText(app_->stopText);
    testsupport::SaveAsInNextFileChooser({}, &chooserSeen);
    Click(app_->existingLogButton);
    EXPECT_FALSE(Visible(app_->saveButton));
    EXPECT_FALSE(Visible(app_->lastLogLabel));
    EXPECT_TRUE(Visible(app_->collectExistingText));
    EXPECT_EQ(LabelText(app_->stopText), hintBefore);
  });
  EXPECT_TRUE(chooserSeen);
  EXPECT_EQ(app_->saveButtonIsView, 0);
  EXPECT_TRUE(std::filesystem::exists(app_->existingArchive));
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
  EXPECT_EQ(error.title, "Norvex Log Collection Utility");
  EXPECT_EQ(MessageText(error), "No files found at \"" + app_->existingClientLogCopy.string() +
                            "\".\nUnable to create the tar archive.");
  EXPECT_EQ(error.iconName, "dialog-error");
  EXPECT_FALSE(std::filesystem::exists(app_->existingArchive));
  EXPECT_EQ(app_->saveButtonIsView, 0);
}

}  // namespace
}  // namespace apptest
