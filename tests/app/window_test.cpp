// The real window in-process: what a run does to the log levels, the client's
// log path and the marker, the question before overwriting, and what the
// flows show when something fails. How each state looks to a screen reader is
// the accessibility run's (logmgr_test.cpp).
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

TEST_F(WindowTest, RunRaisesAndGivesBackLevelsAsksBeforeOverwritingAndSurvivesAClose) {
  const std::string clientLog = (Logs() / "ORBClient.log").string();
  log_client_init();
  ASSERT_TRUE(log_set_class_level(0, 3) && log_set_class_level(7, 6) && log_set_shared_path(clientLog.c_str()));
  WriteFile(Logs() / "KeywardSvr.latest", "keyward before the run\n");
  DialogRecord question;
  App& app = *app_;
  RunWindow([&](GtkWidget*) {
    // The sheet, above the theme, writes the start button in the theme's selection colours.
    GtkStyleContext* style = gtk_widget_get_style_context(app.startStopButton);
    GdkRGBA text, selected;
    gtk_style_context_get_color(style, gtk_style_context_get_state(style), &text);
    EXPECT_TRUE(gtk_style_context_lookup_color(style, "theme_selected_fg_color", &selected) &&
                gdk_rgba_equal(&text, &selected)) << gdk_rgba_to_string(&text);
    Click(app.startStopButton);
    ASSERT_EQ(app.collecting, 1);
    EXPECT_TRUE(fs::exists(Marker()));
    WriteFile(Issue() / "ORBClient.log", "verbose client lines\n");
    WriteFile(Logs() / "userActivitylog.latest", "clicked connect\n");
    WriteFile(Logs() / "kvlog.latest", "sibling lines\n");

    Click(app.startStopButton);
    EXPECT_EQ(app.collecting, 2);
    EXPECT_TRUE(AllClassesAt(3)) << "class 7 had 6, and must get class 0's 3 like all others";
    EXPECT_EQ(log_get_shared_path(), clientLog);
    EXPECT_FALSE(fs::exists(Marker()));

    // Staged logs: any answer but "Continue", closing too, leaves the run unstarted and the levels as they are.
    for (auto [answer, collecting] : {std::pair{"Close", 2}, {"", 2}, {"Continue", 1}}) {
      AnswerNextDialog(answer, &question);
      Click(app.startStopButton);
      EXPECT_TRUE(app.collecting == collecting && AllClassesAt(collecting == 2 ? 3 : 1) && fs::exists(Marker()))
          << "answered " << answer;
    }
  });
  // Closed during the second run: nothing is restored.
  EXPECT_TRUE(AllClassesAt(1));
  EXPECT_EQ(log_get_shared_path(), (Issue() / "ORBClient.log").string());
  EXPECT_TRUE(fs::exists(Marker()));
  EXPECT_EQ(question.title, "Norvex Log Collection Utility");
  EXPECT_EQ(question.message, "Are you sure you want to continue? Your recent logs will be overwritten.");
  EXPECT_EQ(question.buttons, (std::vector<std::string>{"Continue", "Close"}));
  EXPECT_EQ(question.iconName, "dialog-warning");
  EXPECT_EQ(ArchiveMembers(app.issueArchive),
            "DesklineCheck.txt\nEnvdump.txt\nKeywardConfig.xml\nKeywardSvr.latest\nORBClient.log\n"
            "UserSystemInfo.txt\nkvlog.latest\nuserActivitylog.latest\n");
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

}  // namespace
}  // namespace apptest
