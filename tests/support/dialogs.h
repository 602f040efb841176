#pragma once
// Answers the modal dialogs that code under test runs with gtk_dialog_run:
// a main-loop timeout finds the dialog among the toplevels and acts on it.
#include <gtk/gtk.h>

#include <string>
#include <vector>

namespace testsupport {

// What a dialog showed.
struct DialogRecord {
  bool seen = false;
  std::string title, iconName;
  std::string message;               // the content's label texts, joined by "\n"
  std::vector<std::string> buttons;  // in order
};

// Records the next shown dialog that has a button labelled button, then clicks
// it; with an empty label, the next dialog of any kind, closed as a user closes
// it. Polls every 20 ms for up to 10 s.
void AnswerNextDialog(const std::string& button, DialogRecord* record = nullptr);
// Drops the answers still waiting, so none leaks into the next case.
void ForgetPendingAnswers();

}  // namespace testsupport
