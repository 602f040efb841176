// The state painters: the run, idle and saved states of the window and the
// last-saved line, each painted in one place. The flows themselves change
// only the one hint or label that belongs to their own step.
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
  gtk_button_set_label(GTK_BUTTON(startStopButton), _("Stop collecting logs"));
  SetLabel(stopText, _("Click \"Stop collecting logs\" after the issue is reproduced."));
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
  SetLabel(stopText, _("Click \"Start collecting logs\" and then reproduce the issue. This gathers the most "
                       "recent logs."));
  SetLabel(collectExistingText, _("Click \"Collect existing logs\" to gather the logs that might have captured "
                                  "the issue from previous occurrences."));
  gtk_button_set_label(GTK_BUTTON(startStopButton), _("Start collecting logs"));
}

void App::ShowLastSaved() {
  gtk_widget_show(ruler);
  // The catalogue text ends in a blank already; the extra one is intended.
  lastSavedText = std::string(_("Last saved log: ")) + " " + TimestampText();
  gtk_widget_show(lastLogLabel);
  SetLabel(lastLogLabel, _(lastSavedText.c_str()));
}

void App::ShowSavedState() {
  SetLabel(stopText, _("Click \"View saved logs\" to view the recently saved logs."));
  gtk_widget_hide(saveButton);
  gtk_button_set_label(GTK_BUTTON(saveButton), _("View saved logs"));
  // Shown in every case: after collecting existing logs it may not have been visible yet.
  gtk_widget_show(saveButton);
  saveButtonIsView = 1;
}
