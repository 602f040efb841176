#include "support/dialogs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>

namespace testsupport {
namespace {

struct Answer {
  std::string button;
  DialogRecord* record;
};
std::list<Answer> pending;

// Depth first; visit returns false to stay out of a widget's children.
template <typename Visit>
void Walk(GtkWidget* widget, const Visit& visit) {
  if (!visit(widget) || !GTK_IS_CONTAINER(widget)) return;
  GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
  for (GList* c = children; c; c = c->next) Walk(GTK_WIDGET(c->data), visit);
  g_list_free(children);
}

// The buttons in the order shown, without their inner labels.
DialogRecord Describe(GtkDialog* dialog, std::vector<GtkWidget*>* buttons) {
  DialogRecord record{true, gtk_window_get_title(GTK_WINDOW(dialog)) ?: "", "", "", {}};
  Walk(gtk_dialog_get_content_area(dialog), [&](GtkWidget* widget) {
    const char* icon = nullptr;
    if (GTK_IS_IMAGE(widget) && gtk_image_get_storage_type(GTK_IMAGE(widget)) == GTK_IMAGE_ICON_NAME)
      gtk_image_get_icon_name(GTK_IMAGE(widget), &icon, nullptr);
    if (icon && record.iconName.empty()) record.iconName = icon;
    if (GTK_IS_LABEL(widget))
      record.message += (record.message.empty() ? "" : "\n") + std::string(gtk_label_get_text(GTK_LABEL(widget)));
    if (GTK_IS_BUTTON(widget) && gtk_button_get_label(GTK_BUTTON(widget)))
      record.buttons.emplace_back(gtk_button_get_label(GTK_BUTTON(widget))), buttons->push_back(widget);
    return !GTK_IS_BUTTON(widget);
  });
  return record;
}

}  // namespace

void AnswerNextDialog(const std::string& button, DialogRecord* record) { pending.push_back({button, record}); }

void ForgetPendingAnswers() { pending.clear(); }

}  // namespace testsupport

using namespace testsupport;

// Replaces GTK's modal run for the program under test, so that no dialog blocks a case.
extern "C" gint gtk_dialog_run(GtkDialog* dialog) {
  gtk_widget_show(GTK_WIDGET(dialog));
  // A file chooser knows the chosen file only once it has loaded its folder, which it does in the loop.
  for (int spins = 0; GTK_IS_FILE_CHOOSER(dialog) && spins < 1000; ++spins) {
    g_autofree gchar* folder = gtk_file_chooser_get_current_folder(GTK_FILE_CHOOSER(dialog));
    if (folder) break;
    g_main_context_iteration(nullptr, FALSE), g_usleep(10000);
  }
  std::vector<GtkWidget*> buttons;
  const DialogRecord shown = Describe(dialog, &buttons);
  const auto answer = std::ranges::find_if(pending, [&](const Answer& a) {
    return a.button.empty() || std::ranges::count(shown.buttons, a.button);
  });
  if (answer == pending.end()) {
    ADD_FAILURE() << "no answer for the dialog \"" << shown.message << "\"";
    return GTK_RESPONSE_DELETE_EVENT;
  }
  if (answer->record) *answer->record = shown;
  const auto chosen = std::ranges::find(shown.buttons, answer->button);
  GtkWidget* button = chosen == shown.buttons.end() ? nullptr : buttons[chosen - shown.buttons.begin()];
  pending.erase(answer);
  return button ? gtk_dialog_get_response_for_widget(dialog, button) : GTK_RESPONSE_DELETE_EVENT;
}
