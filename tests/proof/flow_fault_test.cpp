// The two collecting flows when "tar" is missing or fails, and a save onto a
// full device, driven through the real window.
#include <gtest/gtest.h>

#include "app/app_root.h"
#include "app/window_fixture.h"
#include "support/dialogs.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace prooftest {
namespace {

namespace fs = std::filesystem;
using apptest::LabelText;
using apptest::MessageText;
using apptest::Visible;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using testsupport::DialogRecord;
using testsupport::ReadFile;
using testsupport::WriteFile;

constexpr const char* kArchiveFailed = "Failed to save the log file archive. Please try again.";

struct TarFault {
  const char* name;
  const char* fakeTar;     // script body of a "tar" on PATH, or nullptr for none at all
  const char* statusLine;  // what the command runner says about the failed run
};

void PrintTo(const TarFault& fault, std::ostream* out) { *out << fault.name; }

class TarFaultTest : public apptest::WindowTest, public testing::WithParamInterface<TarFault> {
 protected:
  void SetUp() override {
    apptest::WindowTest::SetUp();
    const fs::path bin = scratch_ / "bin";
    testsupport::LinkSystemTools(bin, {"sh", "cp", "mkdir", "rm", "find", "dirname", "pgrep", "uname",
                                       "cut", "cat", "which", "gzip"});
    if (GetParam().fakeTar != nullptr) testsupport::WriteScript(bin / "tar", GetParam().fakeTar);
    pathEnv_ = std::make_unique<testsupport::ScopedEnv>("PATH", bin.c_str());
    WriteFile(LogsFolder() / "KeywardSvr.latest", "keyward\n");
    WriteFile(LogsFolder() / "kvlog.1", "sibling\n");
  }
  void Click(GtkWidget* button) { gtk_button_clicked(GTK_BUTTON(button)); }

  struct Outcome {
    DialogRecord error;
    bool chooserSeen = false;
    std::string stderrText;
  };

  // Clicks button with the next file chooser cancelled (it must not come),
  // the next message accepted and standard error captured.
  void ClickAnswered(GtkWidget* button, Outcome& outcome) {
    testsupport::SaveAsInNextFileChooser("", &outcome.chooserSeen);
    testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, &outcome.error);
    CaptureStderr();
    Click(button);
    outcome.stderrText = GetCapturedStderr();
  }

  // An archive made before (by an earlier, successful collection) is never
  // offered as the result of this one.
  void ExpectNothingOffered(const Outcome& outcome) {
    ASSERT_TRUE(outcome.error.seen);
    EXPECT_EQ(MessageText(outcome.error), kArchiveFailed);
    EXPECT_EQ(outcome.error.iconName, "dialog-error");
    EXPECT_FALSE(outcome.chooserSeen);
    EXPECT_FALSE(Visible(app_->saveButton));
    EXPECT_FALSE(Visible(app_->lastLogLabel));
    EXPECT_EQ(app_->lastSavedText, "");
    EXPECT_NE(outcome.stderrText.find(GetParam().statusLine), std::string::npos) << outcome.stderrText;
  }

  std::unique_ptr<testsupport::ScopedEnv> pathEnv_;
};

TEST_P(TarFaultTest, CollectingExistingLogsReportsTheFailureAndOffersNoArchive) {
  WriteFile(app_->existingArchive, "earlier archive");
  Outcome outcome;
  RunWindow([&](GtkWidget*) { ClickAnswered(app_->existingLogButton, outcome); });
  ExpectNothingOffered(outcome);
  EXPECT_EQ(app_->saveButtonIsView, 0);
  if (GetParam().fakeTar == nullptr) {
    EXPECT_EQ(ReadFile(app_->existingArchive), "earlier archive");
  }
}

TEST_P(TarFaultTest, StoppingARunReportsTheFailureAndReturnsToIdle) {
  WriteFile(app_->issueArchive, "earlier issue archive");
  Outcome outcome;
  RunWindow([&](GtkWidget*) {
    Click(app_->startStopButton);
    ASSERT_EQ(app_->collecting, 1);
    ClickAnswered(app_->startStopButton, outcome);
  });
  ExpectNothingOffered(outcome);
  EXPECT_EQ(app_->collecting, 0);
  EXPECT_TRUE(Visible(app_->existingLogButton));
  EXPECT_EQ(LabelText(app_->startStopButton), "Start collecting logs");
  if (GetParam().fakeTar == nullptr) {
    EXPECT_EQ(ReadFile(app_->issueArchive), "earlier issue archive");
  }
}

INSTANTIATE_TEST_SUITE_P(
    Tar, TarFaultTest,
    testing::Values(TarFault{"Missing", nullptr, "Child process terminated with exit status: 127\n"},
                    // Like a real tar that meets a write error half-way: a cut archive, status 2.
                    TarFault{"Failing", "printf 'cut' > \"$2\"\necho 'tar: write error' >&2\nexit 2",
                             "Child process terminated with exit status: 2\n"}),
    [](const testing::TestParamInfo<TarFault>& info) { return std::string(info.param.name); });

// Records and accepts the utility's own message dialog, whatever other
// dialogs (the file chooser) are still up; polls for at most 20 s.
void AnswerUtilityMessage(DialogRecord* record) {
  struct Poll {
    DialogRecord* record;
    int left = 1000;
  };
  g_timeout_add(20, [](gpointer data) -> gboolean {
    auto* poll = static_cast<Poll*>(data);
    GList* toplevels = gtk_window_list_toplevels();
    GtkDialog* found = nullptr;
    for (GList* item = toplevels; item && !found; item = item->next) {
      GtkWidget* window = GTK_WIDGET(item->data);
      const char* title = gtk_window_get_title(GTK_WINDOW(window));
      if (GTK_IS_DIALOG(window) && !GTK_IS_FILE_CHOOSER(window) && gtk_widget_get_mapped(window) &&
          title && std::string(title) == "Norvex Log Collection Utility")
        found = GTK_DIALOG(window);
    }
    g_list_free(toplevels);
    if (found) {
      poll->record->seen = true;
      for (const std::string& text : testsupport::CollectLabelTexts(gtk_dialog_get_content_area(found)))
        poll->record->text += (poll->record->text.empty() ? "" : "\n") + text;
      gtk_dialog_response(found, GTK_RESPONSE_ACCEPT);
    }
    if (found || --poll->left == 0) {
      delete poll;
      return G_SOURCE_REMOVE;
    }
    return G_SOURCE_CONTINUE;
  }, new Poll{record});
}

using SaveFaultTest = apptest::WindowTest;

TEST_F(SaveFaultTest, SavingOntoAFullDeviceShowsTheErrorAndKeepsTheStagedFiles) {
  WriteFile(LogsFolder() / "KeywardSvr.latest", "keyward\n");
  WriteFile(LogsFolder() / "kvlog.latest", "sibling\n");
  WriteFile(LogsFolder() / "userActivitylog.latest", "activity\n");
  DialogRecord error;
  RunWindow([&](GtkWidget*) {
    gtk_button_clicked(GTK_BUTTON(app_->startStopButton));
    gtk_button_clicked(GTK_BUTTON(app_->startStopButton));
    ASSERT_EQ(app_->collecting, 2);
    testsupport::WhenDialogAppears(
        [](GtkDialog* chooser) {
          gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(chooser), "/dev/full");
          gtk_dialog_response(chooser, GTK_RESPONSE_ACCEPT);
        },
        GTK_TYPE_FILE_CHOOSER_DIALOG);
    AnswerUtilityMessage(&error);
    gtk_button_clicked(GTK_BUTTON(app_->saveButton));
    EXPECT_EQ(LabelText(app_->saveButton), "Save logs");
    EXPECT_EQ(LabelText(app_->stopText), "Click \"Save logs\" to save the logs to the desired location.");
  });
  ASSERT_TRUE(error.seen);
  // The content box holds the dialog's one button as well.
  EXPECT_EQ(error.text,
            "Failed to save logs at \"/dev/full\" \nPlease check the folder permisions and try again.\nOK");
  EXPECT_EQ(app_->savedLogsLocation, "/dev/full");
  EXPECT_EQ(app_->saveButtonIsView, 0);
  for (const char* staged : {"KeywardSvr.latest", "kvlog.latest", "userActivitylog.latest"})
    EXPECT_TRUE(fs::exists(IssueFolder() / staged)) << staged;
  EXPECT_TRUE(fs::exists(app_->issueArchive));
}

}  // namespace
}  // namespace prooftest
