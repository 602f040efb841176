#pragma once
// Answers the modal dialogs that code under test runs with gtk_dialog_run:
// a main-loop timeout finds the dialog among the toplevels and acts on it.
#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

namespace testsupport {

// Runs act once on the first shown dialog of the given type, polling every
// 20 ms for up to 10 s. The default type never matches a file chooser.
void WhenDialogAppears(std::function<void(GtkDialog*)> act, GType type = GTK_TYPE_DIALOG);
// Drops the answers still waiting, so none leaks into the next case.
void ForgetPendingAnswers();

// What a dialog shows.
struct DialogRecord {
  bool seen = false;
  std::string title;
  std::string message;               // the content's label texts, joined by "\n"
  std::vector<std::string> buttons;  // in order
  std::string iconName;
};
DialogRecord Describe(GtkDialog* dialog);
void ClickButton(GtkDialog* dialog, const std::string& label);

// Records the next dialog, then answers it with response.
void AnswerNextDialog(int response, DialogRecord* record = nullptr, GType type = GTK_TYPE_DIALOG);

}  // namespace testsupport
