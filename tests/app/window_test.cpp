// The real window in-process: both flows through its buttons with the state
// each step paints, what they show when something fails, and its language.
#include <algorithm>
#include <clocale>

#include "app/i18n.h"
#include "logclient/logclient.h"
#include "support/fixtures.h"
#include "window_fixture.h"

namespace apptest {
namespace {

namespace fs = std::filesystem;
using namespace testsupport;

bool AllClassesAt(int level) {
  for (int logClass = 0; logClass < LOG_CLASS_COUNT; ++logClass)
    if (log_get_class_level(logClass) != level) return false;
  return true;
}

void ExpectVisible(std::initializer_list<GtkWidget*> widgets, bool visible) {
  for (GtkWidget* widget : widgets) EXPECT_EQ(Visible(widget), visible) << gtk_buildable_get_name(GTK_BUILDABLE(widget));
}

TEST_F(WindowTest, RunRaisesAndGivesBackLevelsAsksBeforeOverwritingSavesAndSurvivesAClose) {
  const std::string clientLog = (Logs() / "ORBClient.log").string();
  log_client_init();
  ASSERT_TRUE(log_set_class_level(0, 3) && log_set_class_level(7, 6) && log_set_shared_path(clientLog.c_str()));
  WriteFile(Logs() / "KeywardSvr.latest", "keyward before the run\n");
  const fs::path saved = Home() / "NorvexDeskline-IssueLogs.tar.gz";  // what the save dialog proposes
  DialogRecord question;
  App& app = *app_;
  RunWindow([&](GtkWidget*) {
    // The sheet, above the theme, writes the start button in the theme's selection colours.
    GtkStyleContext* style = gtk_widget_get_style_context(app.startStopButton);
    GdkRGBA text, selected;
    gtk_style_context_get_color(style, gtk_style_context_get_state(style), &text);
    EXPECT_TRUE(gtk_style_context_lookup_color(style, "theme_selected_fg_color", &selected) &&
                gdk_rgba_equal(&text, &selected)) << gdk_rgba_to_string(&text);
    ExpectVisible({app.saveButton, app.ruler, app.lastLogLabel, app.spinner, app.logCollectionText}, false);

    Click(app.startStopButton);
    ASSERT_EQ(app.collecting, 1);
    EXPECT_TRUE(fs::exists(Marker()));
    ExpectVisible({app.spinner, app.logCollectionText}, true);
    ExpectVisible({app.lastLogLabel, app.ruler, app.saveButton, app.existingLogButton, app.collectExistingText}, false);
    EXPECT_EQ(LabelText(app.startStopButton), "Stop collecting logs");
    EXPECT_EQ(LabelText(app.stopText), "Click \"Stop collecting logs\" after the issue is reproduced.");
    WriteFile(Issue() / "ORBClient.log", "verbose client lines\n");
    WriteFile(Logs() / "userActivitylog.latest", "clicked connect\n");
    WriteFile(Logs() / "kvlog.latest", "sibling lines\n");

    Click(app.startStopButton);
    EXPECT_EQ(app.collecting, 2);
    EXPECT_TRUE(AllClassesAt(3)) << "class 7 had 6, and must get class 0's 3 like all others";
    EXPECT_EQ(log_get_shared_path(), clientLog);
    EXPECT_FALSE(fs::exists(Marker()));
    // Kept as it always was: after a good run the other action stays hidden.
    ExpectVisible({app.saveButton, app.ruler, app.lastLogLabel}, true);
    ExpectVisible({app.spinner, app.logCollectionText, app.existingLogButton, app.collectExistingText}, false);
    EXPECT_EQ(LabelText(app.startStopButton), "Start collecting logs");
    EXPECT_EQ(LabelText(app.stopText), "Click \"Save logs\" to save the logs to the desired location.");
    const std::string lastSaved = LabelText(app.lastLogLabel);
    EXPECT_TRUE(lastSaved.starts_with("Last saved log:  ") && lastSaved[17] != ' ') << lastSaved;

    // Staged logs: any answer but "Continue", closing too, leaves the run unstarted and the levels as they are.
    for (const char* answer : {"Close", ""}) {
      AnswerNextDialog(answer, &question);
      Click(app.startStopButton);
      EXPECT_TRUE(app.collecting == 2 && AllClassesAt(3) && fs::exists(Marker())) << "answered " << answer;
    }

    AnswerNextDialog("Save");
    Click(app.saveButton);
    EXPECT_EQ(LabelText(app.saveButton), "View saved logs");
    // The save removed the staged logs, so the next run starts without asking.
    Click(app.startStopButton);
    EXPECT_EQ(app.collecting, 1);
    EXPECT_EQ(LabelText(app.saveButton), "Save logs");
  });
  // Closed during the second run: nothing is restored.
  EXPECT_TRUE(AllClassesAt(1));
  EXPECT_EQ(log_get_shared_path(), (Issue() / "ORBClient.log").string());
  EXPECT_TRUE(fs::exists(Marker()));
  EXPECT_EQ(question.title, "Norvex Log Collection Utility");
  EXPECT_EQ(question.message, "Are you sure you want to continue? Your recent logs will be overwritten.");
  EXPECT_EQ(question.buttons, (std::vector<std::string>{"Continue", "Close"}));
  EXPECT_EQ(question.iconName, "dialog-warning");
  EXPECT_EQ(ArchiveMembers(saved), "DesklineCheck.txt\nEnvdump.txt\nKeywardConfig.xml\nKeywardSvr.latest\nORBClient.log\n"
                                   "UserSystemInfo.txt\nkvlog.latest\nuserActivitylog.latest\n");
}

TEST_F(WindowTest, SavedArchiveCarriesTheConfigurationAsClientLogAndTheButtonThenViews) {
  WriteFile(scratch_ / "keyward.log", "keyward\n");  // a link's content is stored
  fs::create_symlink(scratch_ / "keyward.log", Logs() / "KeywardSvr.latest");
  WriteFile(Logs() / "userActivitylog.1", "older activity\n");
  WriteFile(Logs() / "kvlog.3", "sibling\n");
  const fs::path saved = Home() / "NorvexDeskline-ExistingLogs.tar.gz";  // what the save dialog proposes
  DialogRecord view;
  RunWindow([&](GtkWidget*) {
    AnswerNextDialog("Save");
    Click(app_->existingLogButton);
    EXPECT_TRUE(Visible(app_->saveButton) && Visible(app_->lastLogLabel));
    EXPECT_FALSE(Visible(app_->collectExistingText));
    EXPECT_EQ(LabelText(app_->saveButton), "View saved logs");
    EXPECT_EQ(LabelText(app_->stopText), "Click \"View saved logs\" to view the recently saved logs.");
    // No opener on PATH: the button says where the file is.
    AnswerNextDialog("OK", &view);
    Click(app_->saveButton);
  });
  EXPECT_EQ(view.message, "Existing logs are saved at \"" + saved.string() + "\".");
  EXPECT_EQ(ArchiveMembers(saved), "DesklineCheck.txt\nEnvdump.txt\nKeywardSvr.latest\nORBClient.log\n"
                                   "UserSystemInfo.txt\nkvlog.3\nuserActivitylog.1\n");
  // The diagnostics step has just copied the configuration onto the issue folder's client log.
  EXPECT_EQ(ArchiveMember(saved, "ORBClient.log"), kKeywardConfigText);
  EXPECT_EQ(ArchiveMember(saved, "KeywardSvr.latest"), "keyward\n");
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
    AnswerNextDialog("OK", error);
    Click(app_->startStopButton);
  };
  RunWindow([&](GtkWidget*) {
    AnswerNextDialog("Cancel", &chooser);
    AnswerNextDialog("OK", &existing);
    Click(app_->existingLogButton);
    stopRun(&emptyStop);
    EXPECT_EQ(app_->collecting, 0);
    WriteFile(Issue() / "kvlog.1", "sibling\n");
    fs::remove(bin_ / "tar");
    WriteScript(bin_ / "tar", "printf cut > \"$2\"\nexit 2");
    stopRun(&failedStop);
    EXPECT_EQ(app_->collecting, 0);
    EXPECT_TRUE(Visible(app_->existingLogButton));
    EXPECT_FALSE(Visible(app_->saveButton));
    // No issue folder can be made where a file holds the logs folder's name.
    fs::remove_all(Logs());
    WriteFile(Logs(), "a file where the log folder should be");
    AnswerNextDialog("OK", &noFolder);
    Click(app_->startStopButton);
    EXPECT_EQ(app_->collecting, 0);
  });
  const std::string unable = "\".\nUnable to create the tar archive.";
  EXPECT_EQ(existing.message, "No files found at \"" + app_->existingClientLogCopy.string() + unable);
  EXPECT_EQ(emptyStop.message, "No files found at \"" + app_->issueFolder.string() + unable);
  EXPECT_EQ(failedStop.message, "Failed to save the log file archive. Please try again.");
  EXPECT_EQ(failedStop.iconName, "dialog-error");
  EXPECT_EQ(noFolder.message, "Failed to create the log file folder at \"" + app_->issueFolder.string() +
                                  "\".\nPlease check the folder permisions and try again.");
  EXPECT_FALSE(chooser.seen);
  EXPECT_FALSE(fs::exists(app_->existingArchive));
  EXPECT_EQ(app_->lastSavedText, "");
}

// Expected texts come from the gettext tool, apart from the program's binding.
TEST_F(WindowTest, WindowAndDialogsSpeakTheRootsCatalogue) {
  fs::create_directory_symlink(NORVEX_BINARY_DIR "/nls", root_ / "nls");
  ScopedEnv language("LANGUAGE", "de"), locale("LC_ALL", "C.UTF-8");
  const std::string formerLocale = setlocale(LC_ALL, nullptr);
  BindMessageCatalogue(app_->installRoot.string());
  const auto german = [&](const std::string& text) {
    return RunAndCapture("TEXTDOMAINDIR=" + root_.str() + "/nls /usr/bin/gettext appshelf '" + text + "'");
  };
  const std::string title = "Norvex Log Collection Utility";
  DialogRecord question, chooser;
  RunWindow([&](GtkWidget* window) {
    EXPECT_EQ(gtk_window_get_title(GTK_WINDOW(window)), german(title));
    EXPECT_EQ(LabelText(app_->startStopButton), german("Start collecting logs"));
    AnswerNextDialog("", &question);
    app_->AskToContinue(window, "?");
    AnswerNextDialog(german("Cancel"), &chooser);
    app_->SaveArchiveDialog(app_->issueArchive, "x.tar.gz", window);
  });
  setlocale(LC_ALL, formerLocale.c_str());
  ASSERT_NE(german(title), title) << "no German title in the catalogue";
  EXPECT_EQ(question.title, german(title));
  EXPECT_EQ(question.buttons, (std::vector<std::string>{german("Continue"), german("Close")}));
  EXPECT_EQ(chooser.title, german("Save File"));
  EXPECT_EQ(std::ranges::count(chooser.buttons, german("Save")), 1);
}

}  // namespace
}  // namespace apptest
