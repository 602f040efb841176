// The save button: saves the issue archive once, then views what was saved.
#include "app/app.h"
#include "app/constants.h"
#include "app/i18n.h"

void App::SaveOrView(GtkWidget* window) {
  if (saveButtonIsView == 0) {
    SaveIssueLogs(window);
    return;
  }
  ViewSavedLogs(window);
}

void App::SaveIssueLogs(GtkWidget* window) {
  if (!SaveArchiveDialog(issueArchive, std::string(constants::kIssueArchiveName), window)) return;
  gtk_label_set_text(GTK_LABEL(stopText), _("Click \"View saved logs\" to view the recently saved logs."));
  gtk_widget_hide(saveButton);
  gtk_button_set_label(GTK_BUTTON(saveButton), _("View saved logs"));
  gtk_widget_show(saveButton);
  saveButtonIsView = 1;
}
