// The collect-existing flow through the window's "existing_log" button.
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
  const fs::path target = scratch_ / "existing.tar.gz";
  std::string suggested;
  DialogRecord view;
  RunWindow([&](GtkWidget*) {
    testsupport::SaveAsInNextFileChooser(target, nullptr, &suggested);
    Click(app_->existingLogButton);
    EXPECT_TRUE(Visible(app_->saveButton) && Visible(app_->lastLogLabel));
    EXPECT_FALSE(Visible(app_->collectExistingText));
    EXPECT_EQ(LabelText(app_->saveButton), "View saved logs");
    EXPECT_EQ(LabelText(app_->stopText), "Click \"View saved logs\" to view the recently saved logs.");
    // No opener on PATH: the button says where the file is.
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &view);
    Click(app_->saveButton);
  });
  EXPECT_EQ(suggested, "NorvexDeskline-ExistingLogs.tar.gz");
  EXPECT_EQ(view.message, "Existing logs are saved at \"" + target.string() + "\".");
  EXPECT_EQ(ArchiveMembers(target), (std::vector<std::string>{"DesklineCheck.txt", "Envdump.txt", "KeywardSvr.latest",
                                                               "ORBClient.log", "UserSystemInfo.txt", "kvlog.3",
                                                               "userActivitylog.1"}));
  // The diagnostics step has just copied the configuration onto the issue folder's client log.
  EXPECT_EQ(ArchiveMember(target, "ORBClient.log"), kKeywardConfigText);
}

TEST_F(WindowTest, NothingToArchiveNamesTheClientLogFileHereButTheFolderWhenARunStops) {
  // Reports that cannot be written: each name leads into a missing folder.
  for (const char* report : {"UserSystemInfo.txt", "Envdump.txt", "DesklineCheck.txt"})
    fs::create_symlink(scratch_ / "missing" / report, Logs() / report);
  fs::remove(root_ / "config/KeywardConfig.xml");
  DialogRecord existing, stop;
  RunWindow([&](GtkWidget*) {
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &existing);
    Click(app_->existingLogButton);
    app_->ShowCollectingState();
    app_->collecting = 1;
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &stop);
    Click(app_->startStopButton);
  });
  const std::string unable = "\".\nUnable to create the tar archive.";
  EXPECT_EQ(existing.message, "No files found at \"" + app_->existingClientLogCopy.string() + unable);
  EXPECT_EQ(stop.message, "No files found at \"" + app_->issueFolder.string() + unable);
  EXPECT_EQ(stop.buttons, std::vector<std::string>{"OK"});
  EXPECT_FALSE(fs::exists(app_->existingArchive));
  EXPECT_EQ(app_->collecting, 0);
  EXPECT_TRUE(Visible(app_->existingLogButton));
  EXPECT_FALSE(Visible(app_->saveButton));
}

}  // namespace
}  // namespace apptest
