// The main window as App::Run builds it, its state painters, and its language.
#include <clocale>

#include "app/i18n.h"
#include "support/files.h"
#include "window_fixture.h"

namespace apptest {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTitle = "Norvex Log Collection Utility";
constexpr const char* kIdleStopHint =
    "Click \"Start collecting logs\" and then reproduce the issue. This gathers the most recent logs.";

void ExpectVisible(std::initializer_list<GtkWidget*> widgets, bool visible) {
  for (GtkWidget* widget : widgets)
    EXPECT_EQ(Visible(widget), visible) << gtk_buildable_get_name(GTK_BUILDABLE(widget));
}

TEST_F(WindowTest, FirstShowThenEachPainterShowsItsWidgetsAndWording) {
  RunWindow([this](GtkWidget* window) {
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(window)), kTitle);
    EXPECT_EQ(gdk_pixbuf_get_width(gtk_window_get_icon(GTK_WINDOW(window))), 64);
    EXPECT_EQ(gtk_image_get_storage_type(GTK_IMAGE(app_->spinner)), GTK_IMAGE_ANIMATION);
    for (GtkWidget* button : {app_->startStopButton, app_->saveButton, app_->existingLogButton}) {
      EXPECT_STREQ(gtk_widget_get_name(button), gtk_buildable_get_name(GTK_BUILDABLE(button)));
      EXPECT_TRUE(gtk_style_context_has_class(gtk_widget_get_style_context(button), "circular"));
    }
    ExpectVisible({app_->saveButton, app_->ruler, app_->lastLogLabel, app_->spinner, app_->logCollectionText}, false);
    ExpectVisible({app_->startStopButton, app_->stopText, app_->existingLogButton, app_->collectExistingText}, true);
    EXPECT_EQ(LabelText(app_->stopText), kIdleStopHint);

    app_->ShowCollectingState();
    ExpectVisible({app_->spinner, app_->logCollectionText}, true);
    ExpectVisible({app_->lastLogLabel, app_->ruler, app_->saveButton, app_->existingLogButton,
                   app_->collectExistingText}, false);
    EXPECT_EQ(LabelText(app_->startStopButton), "Stop collecting logs");
    EXPECT_EQ(LabelText(app_->stopText), "Click \"Stop collecting logs\" after the issue is reproduced.");

    // Kept as it always was: after a good run the other action stays hidden.
    app_->ShowIdleState(0);
    ExpectVisible({app_->saveButton, app_->ruler, app_->lastLogLabel}, true);
    ExpectVisible({app_->spinner, app_->logCollectionText, app_->existingLogButton, app_->collectExistingText}, false);
    EXPECT_EQ(LabelText(app_->startStopButton), "Start collecting logs");
    EXPECT_EQ(LabelText(app_->stopText), kIdleStopHint);
    const std::string lastSaved = LabelText(app_->lastLogLabel);
    EXPECT_TRUE(lastSaved.starts_with("Last saved log:  ") && lastSaved[17] != ' ') << lastSaved;
  });
}

// With the catalogues below the root, German; without them, the built-in wording.
class WindowLanguageTest : public WindowTest, public ::testing::WithParamInterface<bool> {};

TEST_P(WindowLanguageTest, WindowAndDialogsSpeakTheRootsCatalogue) {
  if (GetParam()) fs::create_directory_symlink(NORVEX_BINARY_DIR "/nls", root_ / "nls");
  testsupport::ScopedEnv language("LANGUAGE", "de"), locale("LC_ALL", "C.UTF-8");
  const std::string formerLocale = setlocale(LC_ALL, nullptr);
  BindMessageCatalogue(app_->installRoot.string());
  // The catalogue as the gettext tool reads it, apart from the program's binding.
  const auto expected = [&](const std::string& text) {
    if (!GetParam()) return text;
    return testsupport::RunAndCapture("TEXTDOMAINDIR=" + root_.str() + "/nls /usr/bin/gettext appshelf '" + text + "'");
  };
  testsupport::DialogRecord question, chooser;
  RunWindow([&](GtkWidget* window) {
    EXPECT_EQ(gtk_window_get_title(GTK_WINDOW(window)), expected(kTitle));
    EXPECT_EQ(LabelText(app_->startStopButton), expected("Start collecting logs"));
    app_->ShowCollectingState();
    EXPECT_EQ(LabelText(app_->stopText), expected("Click \"Stop collecting logs\" after the issue is reproduced."));
    testsupport::AnswerNextDialog(GTK_RESPONSE_REJECT, &question);
    app_->AskToContinue(window, "?");
    testsupport::AnswerNextDialog(GTK_RESPONSE_CANCEL, &chooser, GTK_TYPE_FILE_CHOOSER_DIALOG);
    app_->SaveArchiveDialog(app_->issueArchive, "x.tar.gz", window);
  });
  setlocale(LC_ALL, formerLocale.c_str());
  ASSERT_NE(expected(kTitle) == kTitle, GetParam()) << "no German title in the catalogue";
  EXPECT_EQ(question.title, expected(kTitle));
  EXPECT_EQ(question.buttons, (std::vector<std::string>{expected("Continue"), expected("Close")}));
  EXPECT_EQ(chooser.title, expected("Save File"));
  EXPECT_EQ(chooser.buttons, (std::vector<std::string>{expected("Cancel"), expected("Save")}));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, WindowLanguageTest, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "German" : "Missing"; });

}  // namespace
}  // namespace apptest
