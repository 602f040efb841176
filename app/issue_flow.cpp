// Issue reproduction: start raises every log class and points the client's log
// into the issue folder; stop puts both back and archives what was written.
#include "app/actions.h"
#include "app/app.h"
#include "app/i18n.h"

void App::ToggleIssueReproduction(GtkWidget* window) {
  if (collecting == 1)
    StopIssueReproduction(window);
  else
    StartIssueReproduction(window);
}

void App::StartIssueReproduction(GtkWidget* window) {
  if (saveButtonIsView == 1) {
    SetAction(saveButton, _("Save logs"), hints::Save());
    saveButtonIsView = 0;
  }
  if (!PrepareIssueFolder()) {
    ShowError(window, FormatMessage(_("Failed to create the log file folder at \"%s\".\nPlease check the folder "
                                      "permisions and try again."),
                                    issueFolder.string()));
    return;
  }
  // A new run overwrites the staged logs and the archive of the last one.
  if (RecentLogsExist() &&
      AskToContinue(window, _("Are you sure you want to continue? Your recent logs will be overwritten.")) !=
          GTK_RESPONSE_ACCEPT)
    return;
  BeginIssueCollection();
  ShowCollectingState();
  collecting = 1;
}

void App::StopIssueReproduction(GtkWidget* window) {
  EndIssueCollection();
  const int result = ArchiveIssueLogs();
  if (result == 0) {
    ShowIdleState(0);
    gtk_label_set_text(GTK_LABEL(stopText), hints::Save());
    collecting = 2;
    return;
  }
  if (result == 1)
    ShowError(window, FormatMessage(_("No files found at \"%s\".\nUnable to create the tar archive."),
                                    issueFolder.string()));
  else
    ShowError(window, _("Failed to save the log file archive. Please try again."));
  ShowIdleState(result);
  collecting = 0;
}
