// The save dialog, the copy and clean-up behind it, and viewing what was saved.
#include "engine_fixture.h"
#include "support/dialogs.h"
#include "support/files.h"

namespace collecttest {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using testsupport::DialogRecord;

class SaveViewTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    MakeClientFolders();
    testsupport::WriteFile(app_->existingArchive, "existing archive bytes");
    testsupport::WriteFile(app_->issueArchive, "issue archive bytes");
    StageIssueFiles();
  }
  void TearDown() override {
    gtk_widget_destroy(window_);
    testsupport::DrainEvents();
    EngineTest::TearDown();
  }
  void StageIssueFiles() {
    for (const char* name : {"ORBClient.log", "KeywardSvr.latest", "kvlog.latest", "userActivitylog.1",
                             "UserSystemInfo.txt"})
      testsupport::WriteFile(app_->issueFolder / name, name);
  }
  size_t IssueFolderCount() {
    return std::distance(fs::directory_iterator(app_->issueFolder), fs::directory_iterator());
  }
  GtkWidget* window_ = nullptr;
};

TEST_F(SaveViewTest, ASuccessfulSaveOfEitherArchiveClearsTheStagedIssueFiles) {
  fs::create_directories(scratch_ / "chosen");
  for (const fs::path* archive : {&app_->existingArchive, &app_->issueArchive}) {
    const fs::path target = scratch_ / "chosen" / archive->filename();
    StageIssueFiles();
    testsupport::SaveAsInNextFileChooser(target);
    EXPECT_TRUE(app_->SaveArchiveDialog(*archive, archive->filename().string(), window_));
    EXPECT_EQ(app_->savedLogsLocation, target);
    EXPECT_EQ(testsupport::ReadFile(target), testsupport::ReadFile(*archive));
    // Only the issue archive and the system report stay.
    EXPECT_EQ(IssueFolderCount(), 2u);
    EXPECT_TRUE(fs::exists(app_->issueSystemInfo));
  }
}

TEST_F(SaveViewTest, AFailedCopyNamesThePathAndKeepsTheStagedFiles) {
  // Root writes anywhere, so the target is a link into a "folder" that is a regular file.
  testsupport::WriteFile(scratch_ / "plain-file", "not a folder");
  const fs::path target = scratch_ / "chosen" / "out.tar.gz";
  fs::create_directories(target.parent_path());
  fs::create_symlink(scratch_ / "plain-file" / "out.tar.gz", target);
  DialogRecord record;
  testsupport::SaveAsInNextFileChooser(target);
  // The link exists, so the chooser asks to replace it before the copy fails.
  testsupport::WhenDialogAppears(
      [&record](GtkDialog* replace) {
        gtk_dialog_response(replace, GTK_RESPONSE_ACCEPT);
        testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, &record);
      },
      GTK_TYPE_MESSAGE_DIALOG);
  CaptureStderr();
  EXPECT_FALSE(app_->SaveArchiveDialog(app_->issueArchive, "NorvexDeskline-IssueLogs.tar.gz", window_));
  GetCapturedStderr();
  ASSERT_TRUE(record.seen);
  EXPECT_EQ(record.message,
            "Failed to save logs at \"" + target.string() + "\" \nPlease check the folder permisions and try again.");
  EXPECT_EQ(record.iconName, "dialog-error");
  EXPECT_EQ(IssueFolderCount(), 6u);
}

TEST_F(SaveViewTest, ViewOpensTheSavedFileWithTheOpenerOrSaysWhereItIs) {
  UseToolsOnly({"which"});
  app_->savedLogsLocation = scratch_ / "saved.tar.gz";
  DialogRecord record;
  testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, &record);
  CaptureStderr();
  app_->ViewSavedLogs(window_);
  GetCapturedStderr();
  ASSERT_TRUE(record.seen);
  EXPECT_EQ(record.iconName, "dialog-information");
  EXPECT_EQ(record.message, "Existing logs are saved at \"" + app_->savedLogsLocation.string() + "\".");

  const fs::path args = scratch_ / "opened.txt";
  testsupport::WriteScript(Bin() / "xdg-open", "echo \"$@\" > " + args.string());
  // The answerer may outlive the test, so what it marks lives on the heap.
  auto shown = std::make_shared<bool>(false);
  testsupport::WhenDialogAppears([shown](GtkDialog* dialog) {
    *shown = true;
    gtk_dialog_response(dialog, GTK_RESPONSE_ACCEPT);
  });
  app_->ViewSavedLogs(window_);
  testsupport::DrainEvents();
  EXPECT_FALSE(*shown);
  EXPECT_EQ(testsupport::ReadFile(args), app_->savedLogsLocation.string() + "\n");
}

}  // namespace
}  // namespace collecttest
