// The collect-existing flow through the window's "existing_log" button, and
// what both flows show when a folder cannot be made, there is nothing to
// archive or tar fails.
#include "app_root.h"
#include "support/files.h"
#include "window_fixture.h"

namespace apptest {
namespace {

namespace fs = std::filesystem;
using testsupport::AnswerNextDialog;
using testsupport::DialogRecord;

TEST_F(WindowTest, SavedArchiveCarriesTheConfigurationAsClientLogAndTheButtonThenViews) {
  testsupport::WriteFile(Logs() / "KeywardSvr.latest", "keyward\n");
  testsupport::WriteFile(Logs() / "userActivitylog.1", "older activity\n");
  testsupport::WriteFile(Logs() / "kvlog.3", "sibling\n");
  const fs::path saved = Home() / "NorvexDeskline-ExistingLogs.tar.gz";  // what the save dialog proposes
  DialogRecord view;
  RunWindow([&](GtkWidget*) {
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, nullptr, GTK_TYPE_FILE_CHOOSER_DIALOG);
    Click(app_->existingLogButton);
    EXPECT_TRUE(Visible(app_->saveButton) && Visible(app_->lastLogLabel));
    EXPECT_FALSE(Visible(app_->collectExistingText));
    EXPECT_EQ(LabelText(app_->saveButton), "View saved logs");
    EXPECT_EQ(LabelText(app_->stopText), "Click \"View saved logs\" to view the recently saved logs.");
    // No opener on PATH: the button says where the file is.
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &view);
    Click(app_->saveButton);
  });
  EXPECT_EQ(view.message, "Existing logs are saved at \"" + saved.string() + "\".");
  EXPECT_EQ(ArchiveMembers(saved), (std::vector<std::string>{"DesklineCheck.txt", "Envdump.txt", "KeywardSvr.latest",
                                                              "ORBClient.log", "UserSystemInfo.txt", "kvlog.3",
                                                              "userActivitylog.1"}));
  // The diagnostics step has just copied the configuration onto the issue folder's client log.
  EXPECT_EQ(ArchiveMember(saved, "ORBClient.log"), kKeywardConfigText);
}

TEST_F(WindowTest, FailuresAreReportedAndNothingOffered) {
  // Reports that cannot be written: each name leads into a missing folder.
  for (const char* report : {"UserSystemInfo.txt", "Envdump.txt", "DesklineCheck.txt"})
    fs::create_symlink(scratch_ / "missing" / report, Logs() / report);
  fs::remove(root_ / "config/KeywardConfig.xml");
  DialogRecord existing, emptyStop, failedStop, chooser, noFolder;
  // A run that ends with nothing gathered, then one whose tar stops half-way.
  const auto stopRun = [this](DialogRecord* error) {
    app_->ShowCollectingState();
    app_->collecting = 1;
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, error);
    Click(app_->startStopButton);
  };
  RunWindow([&](GtkWidget*) {
    AnswerNextDialog(GTK_RESPONSE_CANCEL, &chooser, GTK_TYPE_FILE_CHOOSER_DIALOG);
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &existing);
    Click(app_->existingLogButton);
    stopRun(&emptyStop);
    EXPECT_EQ(app_->collecting, 0);
    testsupport::WriteFile(Issue() / "kvlog.1", "sibling\n");
    fs::remove(bin_ / "tar");
    testsupport::WriteScript(bin_ / "tar", "printf cut > \"$2\"\nexit 2");
    stopRun(&failedStop);
    EXPECT_EQ(app_->collecting, 0);
    EXPECT_TRUE(Visible(app_->existingLogButton));
    EXPECT_FALSE(Visible(app_->saveButton));
    // No issue folder can be made where a file holds the logs folder's name.
    fs::remove_all(Logs());
    testsupport::WriteFile(Logs(), "a file where the log folder should be");
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &noFolder);
    Click(app_->startStopButton);
    EXPECT_EQ(app_->collecting, 0);
  });
  const std::string unable = "\".\nUnable to create the tar archive.";
  EXPECT_EQ(existing.message, "No files found at \"" + app_->existingClientLogCopy.string() + unable);
  EXPECT_EQ(emptyStop.message, "No files found at \"" + app_->issueFolder.string() + unable);
  EXPECT_EQ(failedStop.message, "Failed to save the log file archive. Please try again.");
  EXPECT_EQ(failedStop.buttons, std::vector<std::string>{"OK"});
  EXPECT_EQ(failedStop.iconName, "dialog-error");
  EXPECT_EQ(noFolder.message, "Failed to create the log file folder at \"" + app_->issueFolder.string() +
                                  "\".\nPlease check the folder permisions and try again.");
  EXPECT_FALSE(chooser.seen);
  EXPECT_FALSE(fs::exists(app_->existingArchive));
  EXPECT_EQ(app_->lastSavedText, "");
}

}  // namespace
}  // namespace apptest
