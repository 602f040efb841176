// Signal handlers of the main window; each reaches the one App through gApp.
#include "app/app.h"

extern "C" {

gboolean OnMainWindowDelete(GtkWidget*, GdkEvent*, gpointer) {
  // Nothing is restored on close, not even during a run.
  gtk_main_quit();
  return FALSE;
}

void OnStartStopClicked(GtkButton*, gpointer window) { gApp->ToggleIssueReproduction(GTK_WIDGET(window)); }

void OnSaveClicked(GtkButton*, gpointer window) { gApp->SaveOrView(GTK_WIDGET(window)); }

void OnCollectExistingClicked(GtkButton*, gpointer window) { gApp->CollectExistingLogs(GTK_WIDGET(window)); }

}  // extern "C"
