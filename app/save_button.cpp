// The save button: saves the issue archive once, then views what was saved.
#include "app/app.h"
#include "app/constants.h"

void App::SaveOrView(GtkWidget* window) {
  if (saveButtonIsView == 0) {
    SaveIssueLogs(window);
    return;
  }
  ViewSavedLogs(window);
}

void App::SaveIssueLogs(GtkWidget* window) {
  if (SaveArchiveDialog(issueArchive, std::string(constants::kIssueArchiveName), window)) ShowSavedState();
}
