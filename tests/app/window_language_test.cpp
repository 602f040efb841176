// The window and its dialogs in the language of the install root's catalogue.
#include <clocale>

#include "app/i18n.h"
#include "support/files.h"
#include "window_fixture.h"

namespace apptest {
namespace {

// With the catalogues below the root, German; without them, the built-in wording.
class WindowLanguageTest : public WindowTest, public ::testing::WithParamInterface<bool> {};

TEST_P(WindowLanguageTest, WindowAndDialogsSpeakTheRootsCatalogue) {
  if (GetParam()) std::filesystem::create_directory_symlink(NORVEX_BINARY_DIR "/nls", root_ / "nls");
  testsupport::ScopedEnv language("LANGUAGE", "de"), locale("LC_ALL", "C.UTF-8");
  const std::string formerLocale = setlocale(LC_ALL, nullptr);
  BindMessageCatalogue(app_->installRoot.string());
  // The catalogue as the gettext tool reads it, apart from the program's binding.
  const auto expected = [&](const std::string& text) {
    if (!GetParam()) return text;
    return testsupport::RunAndCapture("TEXTDOMAINDIR=" + root_.str() + "/nls /usr/bin/gettext appshelf '" + text + "'");
  };
  const std::string title = "Norvex Log Collection Utility";
  testsupport::DialogRecord question, chooser;
  RunWindow([&](GtkWidget* window) {
    EXPECT_EQ(gtk_window_get_title(GTK_WINDOW(window)), expected(title));
    EXPECT_EQ(LabelText(app_->startStopButton), expected("Start collecting logs"));
    app_->ShowCollectingState();
    EXPECT_EQ(LabelText(app_->stopText), expected("Click \"Stop collecting logs\" after the issue is reproduced."));
    testsupport::AnswerNextDialog(GTK_RESPONSE_REJECT, &question);
    app_->AskToContinue(window, "?");
    testsupport::AnswerNextDialog(GTK_RESPONSE_CANCEL, &chooser, GTK_TYPE_FILE_CHOOSER_DIALOG);
    app_->SaveArchiveDialog(app_->issueArchive, "x.tar.gz", window);
  });
  setlocale(LC_ALL, formerLocale.c_str());
  ASSERT_NE(expected(title) == title, GetParam()) << "no German title in the catalogue";
  EXPECT_EQ(question.title, expected(title));
  EXPECT_EQ(question.buttons, (std::vector<std::string>{expected("Continue"), expected("Close")}));
  EXPECT_EQ(chooser.title, expected("Save File"));
  EXPECT_EQ(chooser.buttons, (std::vector<std::string>{expected("Cancel"), expected("Save")}));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, WindowLanguageTest, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "German" : "Missing"; });

}  // namespace
}  // namespace apptest
