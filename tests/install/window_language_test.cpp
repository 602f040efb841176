// The window, its painters and the dialogs speak the language chosen with
// LANGUAGE when the install root carries the catalogues, and show their
// built-in wording when it does not. Binding is done the way the entry does it.
#include <gtest/gtest.h>

#include <clocale>
#include <functional>
#include <map>

#include "app/app.h"
#include "app/constants.h"
#include "app/i18n.h"
#include "install/po_catalogue.h"
#include "support/dialogs.h"
#include "support/fake_root.h"
#include "support/temp_dir.h"

namespace installtest {
namespace {

namespace fs = std::filesystem;

struct Case {
  std::string language;
  bool withCatalogues;
};

std::string PrintCase(const ::testing::TestParamInfo<Case>& info) {
  return info.param.language + (info.param.withCatalogues ? "" : "WithoutCatalogue");
}

std::string LabelOf(GtkWidget* widget) {
  return GTK_IS_BUTTON(widget) ? gtk_button_get_label(GTK_BUTTON(widget)) : gtk_label_get_text(GTK_LABEL(widget));
}

gboolean RunThenQuit(gpointer body) {
  (*static_cast<std::function<void()>*>(body))();
  gtk_main_quit();
  return G_SOURCE_REMOVE;
}

class WindowLanguage : public ::testing::TestWithParam<Case> {
 protected:
  void SetUp() override {
    testsupport::MakeFakeInstallRoot(root_);
    const fs::path source(NORVEX_SOURCE_DIR);
    fs::copy(source / "gtk", root_ / "gtk", fs::copy_options::recursive);
    fs::copy(source / "icons", root_ / "icons", fs::copy_options::recursive);
    if (GetParam().withCatalogues)
      fs::copy(fs::path(NORVEX_BINARY_DIR) / "nls", root_ / "nls", fs::copy_options::recursive);
    catalogue_ = TranslationsOf(source / "po" / (GetParam().language + ".po"));
    ASSERT_FALSE(catalogue_.empty());
  }

  // As the entry binds it, below whatever root the application object found.
  static void BindCatalogue(const App& app) {
    setlocale(LC_ALL, "");
    const std::string domain(constants::kTextDomain);
    bindtextdomain(domain.c_str(), (app.installRoot.string() + "/nls").c_str());
    bind_textdomain_codeset(domain.c_str(), "UTF-8");
    textdomain(domain.c_str());
  }

  // The wording the user must see for a built-in text.
  std::string Expected(const std::string& text) const {
    if (!GetParam().withCatalogues) return text;
    auto found = catalogue_.find(text);
    return found == catalogue_.end() ? "(no " + GetParam().language + " entry for: " + text + ")" : found->second;
  }

  testsupport::TempDir scratch_;
  fs::path root_ = scratch_ / "root";
  testsupport::ScopedEnv home_{"HOME", (scratch_ / "home").c_str()};
  testsupport::ScopedEnv orbroot_{"ORBROOT", root_.c_str()};
  testsupport::ScopedEnv locale_{"LC_ALL", "C.UTF-8"};
  testsupport::ScopedEnv language_{"LANGUAGE", GetParam().language.c_str()};
  std::map<std::string, std::string> catalogue_;
};

TEST_P(WindowLanguage, WindowPaintersAndDialogsUseTheCatalogueOfTheRoot) {
  App app;
  ASSERT_EQ(app.installRoot, root_);
  BindCatalogue(app);
  const std::string title = "Norvex Log Collection Utility";
  // Guards against a language whose texts happen to equal the built-in ones.
  if (GetParam().withCatalogues) {
    ASSERT_NE(Expected(title), title);
  }
  testsupport::DialogRecord question, error, chooser;
  std::function<void()> look = [&] {
    GtkWidget* window = GTK_WIDGET(gtk_builder_get_object(app.builder, "logging"));
    EXPECT_EQ(gtk_window_get_title(GTK_WINDOW(window)), Expected(title));
    EXPECT_EQ(LabelOf(app.startStopButton), Expected("Start collecting logs"));
    EXPECT_EQ(LabelOf(app.existingLogButton), Expected("Collect existing logs"));
    EXPECT_EQ(LabelOf(app.stopText), Expected("Click \"Start collecting logs\" and then reproduce the issue. "
                                               "This gathers the most recent logs."));
    app.ShowCollectingState();
    EXPECT_EQ(LabelOf(app.startStopButton), Expected("Stop collecting logs"));
    testsupport::AnswerNextDialog(GTK_RESPONSE_REJECT, &question);
    app.AskToContinue(window, _("Are you sure you want to continue? Your recent logs will be overwritten."));
    testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, &error);
    app.ShowError(window, FormatMessage(_("No files found at \"%s\".\nUnable to create the tar archive."), "/x"));
    testsupport::AnswerNextDialog(GTK_RESPONSE_CANCEL, &chooser, GTK_TYPE_FILE_CHOOSER_DIALOG);
    app.SaveArchiveDialog(app.issueArchive, std::string(constants::kIssueArchiveName), window);
  };
  g_timeout_add(100, RunThenQuit, &look);
  app.Run();

  EXPECT_EQ(question.title, Expected(title));
  EXPECT_EQ(question.message, Expected("Are you sure you want to continue? Your recent logs will be overwritten."));
  EXPECT_EQ(question.buttons, (std::vector<std::string>{Expected("Continue"), Expected("Close")}));
  std::string errorText = Expected("No files found at \"%s\".\nUnable to create the tar archive.");
  errorText.replace(errorText.find("%s"), 2, "/x");
  EXPECT_EQ(error.message, errorText);
  EXPECT_EQ(error.buttons, std::vector<std::string>{Expected("OK")});
  EXPECT_EQ(chooser.title, Expected("Save File"));
  EXPECT_EQ(chooser.buttons, (std::vector<std::string>{Expected("Cancel"), Expected("Save")}));
}

INSTANTIATE_TEST_SUITE_P(Languages, WindowLanguage,
                         ::testing::Values(Case{"de", true}, Case{"fr", true}, Case{"de", false}), PrintCase);

}  // namespace
}  // namespace installtest
