// The save dialog, the copy and clean-up behind it, and viewing what was saved.
#include "engine_fixture.h"
#include "support/dialogs.h"
#include "support/files.h"

namespace collecttest {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

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
  void StageIssueFiles() {
    for (const char* name : {"ORBClient.log", "KeywardSvr.latest", "kvlog.latest", "userActivitylog.1",
                             "UserSystemInfo.txt"})
      testsupport::WriteFile(app_->issueFolder / name, name);
  }
  void TearDown() override {
    gtk_widget_destroy(window_);
    testsupport::DrainEvents();
    EngineTest::TearDown();
  }
  std::vector<std::string> IssueFolderNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(app_->issueFolder))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  GtkWidget* window_ = nullptr;
};

bool AFileChooserIsShown() {
  bool shown = false;
  GList* toplevels = gtk_window_list_toplevels();
  for (GList* item = toplevels; item; item = item->next)
    shown = shown || (GTK_IS_FILE_CHOOSER_DIALOG(item->data) && gtk_widget_get_visible(GTK_WIDGET(item->data)));
  g_list_free(toplevels);
  return shown;
}

// Accepts path in the next file chooser, then answers the message that
// follows it (once the chooser is gone, so that it is not taken for one).
void SaveAsThenAnswer(const fs::path& path, testsupport::DialogRecord* record) {
  testsupport::WhenDialogAppears(
      [path, record](GtkDialog* dialog) {
        GtkFileChooser* chooser = GTK_FILE_CHOOSER(dialog);
        gtk_file_chooser_set_current_folder(chooser, path.parent_path().c_str());
        gtk_file_chooser_set_current_name(chooser, path.filename().c_str());
        gtk_dialog_response(dialog, GTK_RESPONSE_ACCEPT);
        g_timeout_add(
            20,
            [](gpointer data) -> gboolean {
              if (AFileChooserIsShown()) return G_SOURCE_CONTINUE;
              testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, static_cast<testsupport::DialogRecord*>(data));
              return G_SOURCE_REMOVE;
            },
            record);
      },
      GTK_TYPE_FILE_CHOOSER_DIALOG);
}

struct ChooserSeen {
  std::string title, name;
  bool confirms = false;
  std::vector<std::string> buttons;
};

// Records the chooser as offered, then answers it with response.
void RecordChooser(ChooserSeen* seen, int response) {
  testsupport::WhenDialogAppears(
      [seen, response](GtkDialog* dialog) {
        GtkFileChooser* chooser = GTK_FILE_CHOOSER(dialog);
        seen->title = gtk_window_get_title(GTK_WINDOW(dialog));
        gchar* name = gtk_file_chooser_get_current_name(chooser);
        seen->name = name ? name : "";
        g_free(name);
        seen->confirms = gtk_file_chooser_get_do_overwrite_confirmation(chooser);
        for (int id : {GTK_RESPONSE_CANCEL, GTK_RESPONSE_ACCEPT}) {
          GtkWidget* button = gtk_dialog_get_widget_for_response(dialog, id);
          seen->buttons.push_back(button ? gtk_button_get_label(GTK_BUTTON(button)) : "");
        }
        gtk_dialog_response(dialog, response);
      },
      GTK_TYPE_FILE_CHOOSER_DIALOG);
}

TEST_F(SaveViewTest, AcceptingTheProposalSavesUnderTheArchiveNameInHome) {
  ChooserSeen seen;
  RecordChooser(&seen, GTK_RESPONSE_ACCEPT);
  EXPECT_TRUE(app_->SaveArchiveDialog(app_->issueArchive, "NorvexDeskline-IssueLogs.tar.gz", window_));
  EXPECT_EQ(seen.title, "Save File");
  EXPECT_EQ(seen.name, "NorvexDeskline-IssueLogs.tar.gz");
  EXPECT_TRUE(seen.confirms);
  EXPECT_EQ(seen.buttons, (std::vector<std::string>{"Cancel", "Save"}));
  const fs::path proposed = home_ / "NorvexDeskline-IssueLogs.tar.gz";
  EXPECT_EQ(app_->savedLogsLocation, proposed);
  EXPECT_EQ(testsupport::ReadFile(proposed), "issue archive bytes");
}

TEST_F(SaveViewTest, CancellingChangesNothing) {
  ChooserSeen seen;
  RecordChooser(&seen, GTK_RESPONSE_CANCEL);
  EXPECT_FALSE(app_->SaveArchiveDialog(app_->existingArchive, "NorvexDeskline-ExistingLogs.tar.gz", window_));
  EXPECT_EQ(seen.name, "NorvexDeskline-ExistingLogs.tar.gz");
  EXPECT_TRUE(app_->savedLogsLocation.empty());
  EXPECT_FALSE(fs::exists(home_ / "NorvexDeskline-ExistingLogs.tar.gz"));
  EXPECT_EQ(IssueFolderNames().size(), 6u);
}

TEST_F(SaveViewTest, ASuccessfulSaveOfEitherArchiveClearsTheStagedIssueFiles) {
  fs::create_directories(scratch_ / "chosen");
  for (const fs::path* archive : {&app_->existingArchive, &app_->issueArchive}) {
    const fs::path target = scratch_ / "chosen" / archive->filename();
    StageIssueFiles();
    testsupport::SaveAsInNextFileChooser(target);
    EXPECT_TRUE(app_->SaveArchiveDialog(*archive, archive->filename().string(), window_));
    EXPECT_EQ(app_->savedLogsLocation, target);
    EXPECT_EQ(testsupport::ReadFile(target), testsupport::ReadFile(*archive));
    EXPECT_EQ(IssueFolderNames(),
              (std::vector<std::string>{"NorvexDeskline-IssueLogs.tar.gz", "UserSystemInfo.txt"}));
  }
}

TEST_F(SaveViewTest, AFailedCopyNamesThePathAndKeepsTheStagedFiles) {
  // Root writes anywhere, so the target is made unreachable instead: a link
  // into a "folder" that is really a regular file.
  const fs::path folder = scratch_ / "chosen";
  testsupport::WriteFile(scratch_ / "plain-file", "not a folder");
  fs::create_directories(folder);
  fs::create_symlink(scratch_ / "plain-file" / "out.tar.gz", folder / "out.tar.gz");
  const fs::path target = folder / "out.tar.gz";

  testsupport::DialogRecord record;
  SaveAsThenAnswer(target, &record);
  CaptureStderr();
  EXPECT_FALSE(app_->SaveArchiveDialog(app_->issueArchive, "NorvexDeskline-IssueLogs.tar.gz", window_));
  GetCapturedStderr();
  ASSERT_TRUE(record.seen);
  EXPECT_EQ(ShownMessage(record.text, record.buttons), "Failed to save logs at \"" + target.string() +
                             "\" \nPlease check the folder permisions and try again.");
  EXPECT_EQ(record.iconName, "dialog-error");
  EXPECT_EQ(app_->savedLogsLocation, target);
  EXPECT_EQ(IssueFolderNames().size(), 6u);
}

TEST_F(SaveViewTest, ViewOpensTheSavedFileWithTheOpener) {
  UseToolsOnly({"which"});
  const fs::path args = scratch_ / "opened.txt";
  testsupport::WriteScript(Bin() / "xdg-open", "echo \"$@\" > " + args.string());
  app_->savedLogsLocation = scratch_ / "saved.tar.gz";
  testsupport::DialogRecord record;
  testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, &record);
  app_->ViewSavedLogs(window_);
  testsupport::DrainEvents();
  EXPECT_FALSE(record.seen);
  EXPECT_EQ(testsupport::ReadFile(args), app_->savedLogsLocation.string() + "\n");
}

TEST_F(SaveViewTest, WithoutAnOpenerViewSaysWhereTheFileIs) {
  UseToolsOnly({"which"});
  app_->savedLogsLocation = scratch_ / "saved.tar.gz";
  for (int click = 0; click < 2; ++click) {
    testsupport::DialogRecord record;
    testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, &record);
    CaptureStderr();
    app_->ViewSavedLogs(window_);
    GetCapturedStderr();
    ASSERT_TRUE(record.seen);
    EXPECT_EQ(record.iconName, "dialog-information");
    EXPECT_EQ(ShownMessage(record.text, record.buttons), "Existing logs are saved at \"" + app_->savedLogsLocation.string() + "\".");
  }
}

}  // namespace
}  // namespace collecttest
