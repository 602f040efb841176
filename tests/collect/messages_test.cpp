// The three message kinds: icon, buttons, title and text, and the answer.
#include "engine_fixture.h"
#include "support/dialogs.h"

namespace collecttest {
namespace {

class MessagesTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  }
  void TearDown() override {
    gtk_widget_destroy(window_);
    testsupport::DrainEvents();
    EngineTest::TearDown();
  }
  GtkWidget* window_ = nullptr;
};

struct KindCase {
  int kind;
  const char* icon;
  std::vector<std::string> buttons;
};

TEST_F(MessagesTest, EachKindHasItsIconAndButtons) {
  const std::vector<KindCase> cases = {{kMessageError, "dialog-error", {"OK"}},
                                       {kMessageQuestion, "dialog-warning", {"Continue", "Close"}},
                                       {kMessageInformation, "dialog-information", {"OK"}},
                                       {7, "dialog-error", {"OK"}}};
  for (const KindCase& c : cases) {
    testsupport::DialogRecord record;
    testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, &record);
    const int response = app_->ShowMessage(window_, c.kind, "Something \"%s\" happened.");
    ASSERT_TRUE(record.seen) << "kind " << c.kind;
    EXPECT_EQ(response, GTK_RESPONSE_ACCEPT);
    EXPECT_EQ(record.title, "Norvex Log Collection Utility");
    EXPECT_EQ(ShownMessage(record.text, record.buttons), "Something \"%s\" happened.");
    EXPECT_EQ(record.iconName, c.icon) << "kind " << c.kind;
    EXPECT_EQ(record.buttons, c.buttons) << "kind " << c.kind;
  }
}

TEST_F(MessagesTest, ShortcutsShowTheirKindAndPassTheAnswerOn) {
  testsupport::DialogRecord error;
  testsupport::AnswerNextDialog(GTK_RESPONSE_ACCEPT, &error);
  app_->ShowError(window_, "Failed.");
  EXPECT_EQ(error.iconName, "dialog-error");
  EXPECT_EQ(error.buttons, std::vector<std::string>{"OK"});

  testsupport::AnswerNextDialog(GTK_RESPONSE_REJECT);
  EXPECT_EQ(app_->AskToContinue(window_, "Are you sure?"), GTK_RESPONSE_REJECT);

  // Closed by the window manager.
  testsupport::WhenDialogAppears([](GtkDialog* dialog) { gtk_window_close(GTK_WINDOW(dialog)); });
  EXPECT_EQ(app_->AskToContinue(window_, "Are you sure?"), GTK_RESPONSE_DELETE_EVENT);
}

}  // namespace
}  // namespace collecttest
