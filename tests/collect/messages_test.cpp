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

TEST_F(MessagesTest, QuestionAnswersComeBackAsGiven) {
  testsupport::AnswerNextDialog(GTK_RESPONSE_REJECT);
  EXPECT_EQ(app_->AskToContinue(window_, "Are you sure?"), GTK_RESPONSE_REJECT);

  // Closed by the window manager.
  testsupport::WhenDialogAppears([](GtkDialog* dialog) { gtk_window_close(GTK_WINDOW(dialog)); });
  EXPECT_EQ(app_->AskToContinue(window_, "Are you sure?"), GTK_RESPONSE_DELETE_EVENT);
}

// Checks the content area's one row: icon then text, spaced and padded.
void ExpectIconBesideText(GtkDialog* dialog) {
  GtkWidget* content = gtk_dialog_get_content_area(dialog);
  // Besides the button row, which GTK keeps in the same box.
  G_GNUC_BEGIN_IGNORE_DEPRECATIONS
  GtkWidget* buttons = gtk_dialog_get_action_area(dialog);
  G_GNUC_END_IGNORE_DEPRECATIONS
  std::vector<GtkWidget*> rows;
  GList* children = gtk_container_get_children(GTK_CONTAINER(content));
  for (GList* c = children; c; c = c->next)
    if (c->data != buttons && !gtk_widget_is_ancestor(buttons, GTK_WIDGET(c->data)))
      rows.push_back(GTK_WIDGET(c->data));
  g_list_free(children);
  EXPECT_EQ(rows.size(), 1u);
  GtkWidget* row = rows.empty() ? nullptr : rows.front();
  if (row == nullptr || !GTK_IS_BOX(row)) {
    ADD_FAILURE() << "no box in the content area";
    return;
  }
  gboolean expand = FALSE, fill = FALSE;
  guint padding = 0;
  gtk_box_query_child_packing(GTK_BOX(content), row, &expand, &fill, &padding, nullptr);
  EXPECT_TRUE(expand && fill);
  EXPECT_EQ(padding, 20u);
  EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(row)), GTK_ORIENTATION_HORIZONTAL);
  EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(row)), 10);
  EXPECT_EQ(gtk_widget_get_margin_start(row), 20);
  EXPECT_EQ(gtk_widget_get_margin_end(row), 20);
  GList* items = gtk_container_get_children(GTK_CONTAINER(row));
  EXPECT_EQ(g_list_length(items), 2u);
  if (g_list_length(items) == 2) {
    EXPECT_TRUE(GTK_IS_IMAGE(items->data));
    EXPECT_TRUE(GTK_IS_LABEL(items->next->data));
  }
  g_list_free(items);
}

TEST_F(MessagesTest, ErrorIsModalOverTheWindowWithTheTextBesideTheIcon) {
  bool checked = false;
  testsupport::WhenDialogAppears([&](GtkDialog* dialog) {
    EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(dialog)));
    EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(dialog)), GTK_WINDOW(window_));
    ExpectIconBesideText(dialog);
    checked = true;
    gtk_dialog_response(dialog, GTK_RESPONSE_ACCEPT);
  });
  app_->ShowError(window_, "Failed.");
  EXPECT_TRUE(checked);
}

}  // namespace
}  // namespace collecttest
