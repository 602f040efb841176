// The window as it first shows, and the issue-reproduction flow through its
// start/stop and save buttons, with the state each step paints.
#include "app_root.h"
#include "logclient/logclient.h"
#include "support/files.h"
#include "window_fixture.h"

namespace apptest {
namespace {

namespace fs = std::filesystem;
using testsupport::DialogRecord;
using testsupport::WriteFile;

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
  RunWindow([&](GtkWidget* window) {
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(window)), "Norvex Log Collection Utility");
    EXPECT_EQ(gdk_pixbuf_get_width(gtk_window_get_icon(GTK_WINDOW(window))), 64);
    EXPECT_EQ(gtk_image_get_storage_type(GTK_IMAGE(app.spinner)), GTK_IMAGE_ANIMATION);
    // The sheet, above the theme, writes the start button in the theme's selection colours.
    GtkStyleContext* style = gtk_widget_get_style_context(app.startStopButton);
    GdkRGBA text, selected;
    gtk_style_context_get_color(style, gtk_style_context_get_state(style), &text);
    EXPECT_TRUE(gtk_style_context_lookup_color(style, "theme_selected_fg_color", &selected) &&
                gdk_rgba_equal(&text, &selected)) << gdk_rgba_to_string(&text);
    ExpectVisible({app.saveButton, app.ruler, app.lastLogLabel, app.spinner, app.logCollectionText}, false);
    ExpectVisible({app.startStopButton, app.stopText, app.existingLogButton, app.collectExistingText}, true);

    Click(app.startStopButton);
    ASSERT_EQ(app.collecting, 1);
    EXPECT_TRUE(AllClassesAt(1));
    EXPECT_EQ(log_get_shared_path(), (Issue() / "ORBClient.log").string());
    EXPECT_TRUE(fs::exists(Marker()));
    ExpectVisible({app.spinner, app.logCollectionText}, true);
    ExpectVisible({app.lastLogLabel, app.ruler, app.saveButton, app.existingLogButton, app.collectExistingText}, false);
    EXPECT_EQ(LabelText(app.startStopButton), "Stop collecting logs");
    EXPECT_EQ(LabelText(app.stopText), "Click \"Stop collecting logs\" after the issue is reproduced.");
    // What the client writes while the user reproduces the issue.
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

    // Logs of the last run are staged: any answer but "Continue" (closing the
    // question counts too) leaves the run unstarted and the levels where they are.
    for (const bool byClose : {false, true}) {
      testsupport::WhenDialogAppears([&](GtkDialog* dialog) {
        question = testsupport::Describe(dialog);
        byClose ? gtk_window_close(GTK_WINDOW(dialog)) : testsupport::ClickButton(dialog, "Close");
      });
      Click(app.startStopButton);
      EXPECT_EQ(app.collecting, 2);
      EXPECT_EQ(LabelText(app.startStopButton), "Start collecting logs");
      EXPECT_TRUE(AllClassesAt(3));
      EXPECT_TRUE(fs::exists(Marker()));
    }

    testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, nullptr, GTK_TYPE_FILE_CHOOSER_DIALOG);
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
  EXPECT_EQ(app.savedLogsLocation, saved);
  EXPECT_EQ(ArchiveMembers(saved), (std::vector<std::string>{"DesklineCheck.txt", "Envdump.txt", "KeywardConfig.xml",
                                                              "KeywardSvr.latest", "ORBClient.log", "UserSystemInfo.txt",
                                                              "kvlog.latest", "userActivitylog.latest"}));
  EXPECT_EQ(ArchiveMember(saved, "ORBClient.log"), "verbose client lines\n");
}

}  // namespace
}  // namespace apptest
