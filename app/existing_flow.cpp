// Collect existing logs: reports plus what the client already wrote, archived
// and offered for saving in one go.
#include "app/app.h"
#include "app/constants.h"
#include "app/i18n.h"

void App::CollectExistingLogs(GtkWidget* window) {
  const int result = ArchiveExistingLogs();
  if (result == 0) {
    if (!SaveArchiveDialog(existingArchive, std::string(constants::kExistingArchiveName), window)) return;
    if (saveButtonIsView == 0) {
      gtk_widget_hide(collectExistingText);
      ShowSavedState();
    }
    ShowLastSaved();
  } else if (result == 1) {
    // Names the file, not the folder as the issue flow does.
    ShowError(window, FormatMessage(_("No files found at \"%s\".\nUnable to create the tar archive."),
                                    existingClientLogCopy.string()));
  } else {
    ShowError(window, _("Failed to save the log file archive. Please try again."));
  }
}
