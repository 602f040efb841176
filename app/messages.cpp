// The one modal message builder behind every error, question and notice.
#include "app/app.h"
#include "app/gobject_ptr.h"
#include "app/i18n.h"

namespace {

const char* IconNameFor(int kind) {
  switch (kind) {
    case kMessageQuestion:
      return "dialog-warning";
    case kMessageInformation:
      return "dialog-information";
    default:
      return "dialog-error";
  }
}

void AddButtonsFor(GtkDialog* dialog, int kind) {
  if (kind == kMessageQuestion) {
    gtk_dialog_add_button(dialog, _("Continue"), GTK_RESPONSE_ACCEPT);
    gtk_dialog_add_button(dialog, _("Close"), GTK_RESPONSE_REJECT);
    return;
  }
  gtk_dialog_add_button(dialog, _("OK"), GTK_RESPONSE_ACCEPT);
}

void PackIconAndText(GtkDialog* dialog, int kind, const std::string& text) {
  GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 10);
  GtkWidget* icon = gtk_image_new_from_icon_name(IconNameFor(kind), GTK_ICON_SIZE_DIALOG);
  GtkWidget* label = gtk_label_new(text.c_str());
  gtk_box_pack_start(GTK_BOX(row), icon, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(row), label, TRUE, TRUE, 0);
  gtk_widget_set_margin_start(row, 20);
  gtk_widget_set_margin_end(row, 20);
  gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(dialog)), row, TRUE, TRUE, 20);
}

}  // namespace

int App::ShowMessage(GtkWidget* parent, int kind, const std::string& text) {
  DialogPtr dialog(gtk_dialog_new_with_buttons(_("Norvex Log Collection Utility"),
                                               parent ? GTK_WINDOW(parent) : nullptr,
                                               GTK_DIALOG_DESTROY_WITH_PARENT, nullptr, nullptr));
  AddButtonsFor(GTK_DIALOG(dialog.get()), kind);
  PackIconAndText(GTK_DIALOG(dialog.get()), kind, text);
  gtk_widget_show_all(dialog.get());
  return gtk_dialog_run(GTK_DIALOG(dialog.get()));
}

void App::ShowError(GtkWidget* parent, const std::string& text) { ShowMessage(parent, kMessageError, text); }

int App::AskToContinue(GtkWidget* parent, const std::string& text) {
  return ShowMessage(parent, kMessageQuestion, text);
}
