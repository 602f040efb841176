#include "support/dialogs.h"

#include <algorithm>

namespace testsupport {
namespace {

int generation = 0;  // answers set up before the last ForgetPendingAnswers stop polling

struct Answer {
  std::string button;
  DialogRecord* record;
  int generation = testsupport::generation;
  int pollsLeft = 500;
};

// Visits widget and everything below it, depth first; visit returns false
// to stay out of a widget's children.
template <typename Visit>
void Walk(GtkWidget* widget, const Visit& visit) {
  if (!visit(widget) || !GTK_IS_CONTAINER(widget)) return;
  GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
  for (GList* c = children; c; c = c->next) Walk(GTK_WIDGET(c->data), visit);
  g_list_free(children);
}

// A file chooser learns its folder asynchronously and ignores an answer given
// before that, so it only counts as shown once the folder is known.
bool Shown(GtkWidget* window) {
  if (!GTK_IS_DIALOG(window) || !gtk_widget_get_mapped(window)) return false;
  if (!GTK_IS_FILE_CHOOSER(window)) return true;
  g_autofree gchar* folder = gtk_file_chooser_get_current_folder(GTK_FILE_CHOOSER(window));
  return folder != nullptr;
}

// The buttons in the order shown, without their inner labels.
DialogRecord Describe(GtkDialog* dialog) {
  DialogRecord record{true, gtk_window_get_title(GTK_WINDOW(dialog)) ?: "", "", "", {}};
  Walk(gtk_dialog_get_content_area(dialog), [&](GtkWidget* widget) {
    const char* icon = nullptr;
    if (GTK_IS_IMAGE(widget) && gtk_image_get_storage_type(GTK_IMAGE(widget)) == GTK_IMAGE_ICON_NAME)
      gtk_image_get_icon_name(GTK_IMAGE(widget), &icon, nullptr);
    if (icon && record.iconName.empty()) record.iconName = icon;
    if (GTK_IS_LABEL(widget))
      record.message += (record.message.empty() ? "" : "\n") + std::string(gtk_label_get_text(GTK_LABEL(widget)));
    if (GTK_IS_BUTTON(widget) && gtk_button_get_label(GTK_BUTTON(widget)))
      record.buttons.emplace_back(gtk_button_get_label(GTK_BUTTON(widget)));
    return !GTK_IS_BUTTON(widget);
  });
  return record;
}

gboolean Poll(gpointer data) {
  auto* answer = static_cast<Answer*>(data);
  if (answer->generation != generation) return G_SOURCE_REMOVE;
  GList* toplevels = gtk_window_list_toplevels();
  GtkDialog *dialog = nullptr, *other = nullptr;
  DialogRecord shown;
  for (GList* item = toplevels; item && !dialog; item = item->next) {
    if (!Shown(GTK_WIDGET(item->data))) continue;
    other = GTK_DIALOG(item->data);
    shown = Describe(GTK_DIALOG(item->data));
    if (answer->button.empty() || std::ranges::count(shown.buttons, answer->button)) dialog = GTK_DIALOG(item->data);
  }
  g_list_free(toplevels);
  // None with that button in time: close what is shown, so the case fails rather than hangs.
  if (!dialog && --answer->pollsLeft == 0 && other) gtk_window_close(GTK_WINDOW(other));
  if (!dialog) return answer->pollsLeft > 0;
  if (answer->record) *answer->record = shown;
  if (answer->button.empty()) return gtk_window_close(GTK_WINDOW(dialog)), G_SOURCE_REMOVE;
  Walk(gtk_dialog_get_content_area(dialog), [&](GtkWidget* widget) {
    const bool match = GTK_IS_BUTTON(widget) && answer->button == (gtk_button_get_label(GTK_BUTTON(widget)) ?: "");
    if (match) gtk_button_clicked(GTK_BUTTON(widget));
    return !match;
  });
  return G_SOURCE_REMOVE;
}

}  // namespace

void AnswerNextDialog(const std::string& button, DialogRecord* record) {
  g_timeout_add_full(G_PRIORITY_DEFAULT, 20, Poll, new Answer{button, record},
                     [](gpointer data) { delete static_cast<Answer*>(data); });
}

void ForgetPendingAnswers() { ++generation; }

}  // namespace testsupport
