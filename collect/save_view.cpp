// Lets the user keep an archive where they choose, and opens what was kept.
#include <iostream>

#include "app/app.h"
#include "app/gobject_ptr.h"
#include "app/i18n.h"

namespace fs = std::filesystem;

namespace {

GtkWidget* NewSaveChooser(GtkWidget* parent) {
  return gtk_file_chooser_dialog_new(_("Save File"), parent ? GTK_WINDOW(parent) : nullptr,
                                     GTK_FILE_CHOOSER_ACTION_SAVE, _("Cancel"), GTK_RESPONSE_CANCEL,
                                     _("Save"), GTK_RESPONSE_ACCEPT, nullptr);
}

// The chosen file, or an empty path when the user did not accept.
fs::path RunSaveChooser(GtkWidget* dialog, const std::string& defaultName, const fs::path& home) {
  GtkFileChooser* chooser = GTK_FILE_CHOOSER(dialog);
  gtk_file_chooser_set_do_overwrite_confirmation(chooser, TRUE);
  gtk_file_chooser_set_current_name(chooser, defaultName.c_str());
  // Opens the dialog in the home folder.
  gtk_file_chooser_set_filename(chooser, JoinPath(home.string(), defaultName).c_str());
  if (gtk_dialog_run(GTK_DIALOG(dialog)) != GTK_RESPONSE_ACCEPT) return {};
  const GCharPtr chosen(gtk_file_chooser_get_filename(chooser));
  return chosen ? fs::path(chosen.get()) : fs::path();
}

}  // namespace

bool App::SaveArchiveDialog(const fs::path& archive, const std::string& defaultName, GtkWidget* parent) {
  const DialogPtr dialog(NewSaveChooser(parent));
  if (!dialog) {
    std::cerr << "Error while opening dialog" << std::endl;
    return false;
  }
  const fs::path chosen = RunSaveChooser(dialog.get(), defaultName, homeFolder);
  if (chosen.empty()) return false;
  // Out of sight while the copy runs, so a failure message is not shown beneath it.
  gtk_widget_hide(dialog.get());
  return CopyChosenArchive(archive, chosen, parent);
}

bool App::CopyChosenArchive(const fs::path& archive, const fs::path& chosen, GtkWidget* parent) {
  savedLogsLocation = chosen;
  if (!CopyFile(archive, chosen)) {
    ShowError(parent, FormatMessage(_("Failed to save logs at \"%s\" \nPlease check the folder permisions and try again."),
                                    chosen.string()));
    return false;
  }
  // After any successful save, of the existing-logs archive too.
  RemoveStagedFiles();
  return true;
}

void App::ViewSavedLogs(GtkWidget* parent) {
  if (IsXdgOpenAvailable()) {
    RunCommand({"xdg-open", savedLogsLocation.string()}, 0);
    return;
  }
  ShowMessage(parent, kMessageInformation,
              FormatMessage(_("Existing logs are saved at \"%s\"."), savedLogsLocation.string()));
}
