#include "app/actions.h"

#include <algorithm>

#include "app/gobject_ptr.h"
#include "app/i18n.h"

namespace hints {

const char* Start() {
  return _("Click \"Start collecting logs\" and then reproduce the issue. This gathers the most recent logs.");
}
const char* Stop() { return _("Click \"Stop collecting logs\" after the issue is reproduced."); }
const char* Save() { return _("Click \"Save logs\" to save the logs to the desired location."); }
const char* View() { return _("Click \"View saved logs\" to view the recently saved logs."); }
const char* CollectExisting() {
  return _("Click \"Collect existing logs\" to gather the logs that might have captured the issue from previous "
           "occurrences.");
}

}  // namespace hints

void Describe(GtkWidget* button, const char* hint) {
  atk_object_set_description(gtk_widget_get_accessible(button), hint);
}

void SetAction(GtkWidget* button, const char* label, const char* hint) {
  gtk_button_set_label(GTK_BUTTON(button), label);
  Describe(button, hint);
}

namespace {

// Rounded up as a label rounds its own width.
int TextWidth(GtkWidget* label, const char* text) {
  GObjectPtr<PangoLayout> layout(gtk_widget_create_pango_layout(label, text));
  PangoRectangle logical;
  pango_layout_get_extents(layout.get(), nullptr, &logical);
  return PANGO_PIXELS_CEIL(logical.width);
}

// Runs once the label has taken its style, and its button's before it: only
// then do padding and font measure what is drawn.
void FitWidestLabel(GtkWidget* label, gpointer) {
  const char* labels[] = {_("Start collecting logs"), _("Stop collecting logs"), _("Save logs"), _("View saved logs"),
                          _("Collect existing logs")};
  GtkWidget* button = gtk_widget_get_parent(label);
  if (!GTK_IS_BUTTON(button)) return;  // on its way out
  gtk_widget_set_size_request(button, -1, -1);
  int width = 0;
  gtk_widget_get_preferred_width(button, nullptr, &width);
  int widest = 0;
  for (const char* text : labels) widest = std::max(widest, TextWidth(label, text));
  width += widest - TextWidth(label, gtk_label_get_text(GTK_LABEL(label)));
  gtk_widget_set_size_request(button, width, -1);
}

void WatchLabel(GtkContainer*, GtkWidget* label, gpointer) {
  g_signal_connect(label, "style-updated", G_CALLBACK(FitWidestLabel), nullptr);
}

}  // namespace

void SizeActionButtons(std::initializer_list<GtkWidget*> buttons) {
  for (GtkWidget* button : buttons) {
    WatchLabel(nullptr, gtk_bin_get_child(GTK_BIN(button)), nullptr);
    // Setting a button's text puts a new label in.
    g_signal_connect(button, "add", G_CALLBACK(WatchLabel), nullptr);
  }
}

void KeepFocusShown(GtkWidget* control) {
  GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(gtk_widget_get_toplevel(control)));
  if (focus == nullptr || !gtk_widget_is_visible(focus)) gtk_widget_grab_focus(control);
}
