// The state painters: the run, idle and saved states of the window and the
// last-saved line, each painted in one place. The flows themselves change
// only the one hint or label that belongs to their own step.
#include "app/actions.h"
#include "app/app.h"
#include "app/i18n.h"

namespace {

void SetLabel(GtkWidget* label, const char* text) { gtk_label_set_text(GTK_LABEL(label), text); }

}  // namespace

void App::ShowCollectingState() {
  gtk_widget_show(spinner);
  gtk_widget_show(logCollectionText);
  for (GtkWidget* widget : {lastLogLabel, ruler, saveButton, existingLogButton, collectExistingText})
    gtk_widget_hide(widget);
  SetAction(startStopButton, _("Stop collecting logs"), hints::Stop());
  SetLabel(stopText, hints::Stop());
  KeepFocusShown(startStopButton);
}

void App::ShowIdleState(int failed) {
  gtk_widget_hide(logCollectionText);
  gtk_widget_hide(spinner);
  if (failed == 0) {
    gtk_widget_show(saveButton);
    ShowLastSaved();
  } else {
    gtk_widget_show(existingLogButton);
  }
  // The collect-existing hint only gets its text back here, not its visibility.
  SetLabel(stopText, hints::Start());
  SetLabel(collectExistingText, hints::CollectExisting());
  SetAction(startStopButton, _("Start collecting logs"), hints::Start());
  KeepFocusShown(startStopButton);
}

void App::ShowLastSaved() {
  gtk_widget_show(ruler);
  // The catalogue text ends in a blank already; the extra one is intended.
  lastSavedText = std::string(_("Last saved log: ")) + " " + TimestampText();
  gtk_widget_show(lastLogLabel);
  SetLabel(lastLogLabel, _(lastSavedText.c_str()));
}

void App::ShowSavedState() {
  SetLabel(stopText, hints::View());
  gtk_widget_hide(saveButton);
  SetAction(saveButton, _("View saved logs"), hints::View());
  // Shown in every case: after collecting existing logs it may not have been visible yet.
  gtk_widget_show(saveButton);
  // The hide took the focus when the button itself was just used.
  KeepFocusShown(saveButton);
  saveButtonIsView = 1;
}
