// The message kinds: icon, buttons, title and text, and the answer.
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

TEST_F(MessagesTest, EachKindHasItsIconAndButtonsAndPassesTheAnswerOn) {
  struct Case {
    int kind;
    const char* icon;
    std::vector<std::string> buttons;
  };
  for (const Case& c : std::vector<Case>{{kMessageError, "dialog-error", {"OK"}},
                                         {kMessageQuestion, "dialog-warning", {"Continue", "Close"}},
                                         {kMessageInformation, "dialog-information", {"OK"}},
                                         {7, "dialog-error", {"OK"}}}) {
    testsupport::DialogRecord record;
    testsupport::AnswerNextDialog(GTK_RESPONSE_REJECT, &record);
    EXPECT_EQ(app_->ShowMessage(window_, c.kind, "Something \"%s\" happened."), GTK_RESPONSE_REJECT);
    ASSERT_TRUE(record.seen) << "kind " << c.kind;
    EXPECT_EQ(record.title, "Norvex Log Collection Utility");
    EXPECT_EQ(record.message, "Something \"%s\" happened.");
    EXPECT_EQ(record.iconName, c.icon) << "kind " << c.kind;
    EXPECT_EQ(record.buttons, c.buttons) << "kind " << c.kind;
  }
}

}  // namespace
}  // namespace collecttest
