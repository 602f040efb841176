#include "support/dialogs.h"

#include <chrono>
#include <memory>

namespace testsupport {
namespace {

struct Watch {
  std::function<void(GtkDialog*)> act;
  GType type;
  std::chrono::steady_clock::time_point deadline;
  bool* seen;
};

// A file chooser learns its folder asynchronously and ignores an answer given
// before that, so it only counts as shown once the folder is known.
// A plain dialog type never matches a file chooser, so a message answerer set
// up before a chooser opens waits for the message that follows it.
bool IsReady(GtkWidget* window, GType type) {
  if (!GTK_IS_FILE_CHOOSER(window)) return true;
  if (type == GTK_TYPE_DIALOG) return false;
  gchar* folder = gtk_file_chooser_get_current_folder(GTK_FILE_CHOOSER(window));
  const bool known = folder != nullptr;
  g_free(folder);
  return known;
}

GtkDialog* FindVisibleDialog(GType type) {
  GtkDialog* found = nullptr;
  GList* toplevels = gtk_window_list_toplevels();
  for (GList* item = toplevels; item; item = item->next) {
    GtkWidget* window = GTK_WIDGET(item->data);
    if (G_TYPE_CHECK_INSTANCE_TYPE(window, type) && gtk_widget_get_visible(window) &&
        gtk_widget_get_mapped(window) && IsReady(window, type)) {
      found = GTK_DIALOG(window);
      break;
    }
  }
  g_list_free(toplevels);
  return found;
}

gboolean PollForDialog(gpointer data) {
  auto* watch = static_cast<Watch*>(data);
  if (GtkDialog* dialog = FindVisibleDialog(watch->type)) {
    if (watch->seen) *watch->seen = true;
    watch->act(dialog);
    delete watch;
    return G_SOURCE_REMOVE;
  }
  if (std::chrono::steady_clock::now() > watch->deadline) {
    delete watch;
    return G_SOURCE_REMOVE;
  }
  return G_SOURCE_CONTINUE;
}

// Visits widget and everything below it, depth first; visit returns false
// to stay out of a widget's children.
template <typename Visit>
void Walk(GtkWidget* widget, const Visit& visit) {
  if (!visit(widget) || !GTK_IS_CONTAINER(widget)) return;
  GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
  for (GList* c = children; c; c = c->next) Walk(GTK_WIDGET(c->data), visit);
  g_list_free(children);
}

std::string FindIconName(GtkWidget* widget) {
  std::string name;
  Walk(widget, [&](GtkWidget* w) {
    const char* icon = nullptr;
    if (name.empty() && GTK_IS_IMAGE(w)) gtk_image_get_icon_name(GTK_IMAGE(w), &icon, nullptr);
    if (icon) name = icon;
    return name.empty();
  });
  return name;
}

// The content box holds the button row after the message.
std::string WithoutButtons(std::string text, const std::vector<std::string>& buttons) {
  for (auto button = buttons.rbegin(); button != buttons.rend(); ++button) {
    const std::string tail = "\n" + *button;
    if (text.ends_with(tail)) text.resize(text.size() - tail.size());
  }
  return text;
}

// The chooser changes folder asynchronously; an accept that comes before the
// folder is shown is swallowed by its own checks, so wait for it first.
struct PendingAccept {
  GtkDialog* dialog;
  std::string folder;
  int polls = 0;
};

gboolean AcceptWhenFolderShown(gpointer data) {
  auto* pending = static_cast<PendingAccept*>(data);
  gchar* current = gtk_file_chooser_get_current_folder(GTK_FILE_CHOOSER(pending->dialog));
  const bool shown = current && pending->folder == current;
  g_free(current);
  if (!shown && ++pending->polls < 250) return G_SOURCE_CONTINUE;
  gtk_dialog_response(pending->dialog, GTK_RESPONSE_ACCEPT);
  g_object_unref(pending->dialog);
  delete pending;
  return G_SOURCE_REMOVE;
}

void AcceptOnceFolderIsShown(GtkDialog* dialog, const std::filesystem::path& folder) {
  g_object_ref(dialog);
  g_timeout_add(20, AcceptWhenFolderShown, new PendingAccept{dialog, folder.string()});
}

}  // namespace

void WhenDialogAppears(std::function<void(GtkDialog*)> act, GType type, int timeoutMs, bool* seen) {
  if (seen) *seen = false;
  auto* watch = new Watch{std::move(act), type,
                          std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs), seen};
  g_timeout_add(20, PollForDialog, watch);
}

std::vector<std::string> CollectLabelTexts(GtkWidget* widget) {
  std::vector<std::string> texts;
  Walk(widget, [&](GtkWidget* w) {
    if (GTK_IS_LABEL(w)) texts.emplace_back(gtk_label_get_text(GTK_LABEL(w)));
    return true;
  });
  return texts;
}

void AnswerNextDialog(int response, DialogRecord* record, GType type) {
  WhenDialogAppears([response, record](GtkDialog* dialog) {
    if (record) {
      record->seen = true;
      const char* title = gtk_window_get_title(GTK_WINDOW(dialog));
      record->title = title ? title : "";
      GtkWidget* content = gtk_dialog_get_content_area(dialog);
      std::string joined;
      for (const auto& t : CollectLabelTexts(content)) joined += (joined.empty() ? "" : "\n") + t;
      record->text = joined;
      record->iconName = FindIconName(content);
      record->buttons.clear();
      // The action area is the only place GTK 3 keeps the buttons in order.
      G_GNUC_BEGIN_IGNORE_DEPRECATIONS
      Walk(gtk_dialog_get_action_area(dialog), [record](GtkWidget* w) {
        const char* label = GTK_IS_BUTTON(w) ? gtk_button_get_label(GTK_BUTTON(w)) : nullptr;
        if (label) record->buttons.emplace_back(label);
        return !GTK_IS_BUTTON(w);
      });
      G_GNUC_END_IGNORE_DEPRECATIONS
      record->message = WithoutButtons(record->text, record->buttons);
    }
    gtk_dialog_response(dialog, response);
  }, type);
}

void SaveAsInNextFileChooser(const std::filesystem::path& path, bool* seen, std::string* suggestedName) {
  WhenDialogAppears(
      [path, suggestedName](GtkDialog* dialog) {
        GtkFileChooser* chooser = GTK_FILE_CHOOSER(dialog);
        if (suggestedName) {
          gchar* name = gtk_file_chooser_get_current_name(chooser);
          *suggestedName = name ? name : "";
          g_free(name);
        }
        if (path.empty()) {
          gtk_dialog_response(dialog, GTK_RESPONSE_CANCEL);
          return;
        }
        gtk_file_chooser_set_current_folder(chooser, path.parent_path().c_str());
        gtk_file_chooser_set_current_name(chooser, path.filename().c_str());
        AcceptOnceFolderIsShown(dialog, path.parent_path());
      },
      GTK_TYPE_FILE_CHOOSER_DIALOG, 10000, seen);
}

void DrainEvents() {
  while (gtk_events_pending()) gtk_main_iteration_do(FALSE);
}

}  // namespace testsupport
