#pragma once
// Answers the dialogs the code under test runs, at once, from the answers waiting.
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

// The next dialog that has a button labelled button is recorded and gets that
// button; with an empty label, the next dialog of any kind is closed as a user closes it.
void AnswerNextDialog(const std::string& button, DialogRecord* record = nullptr);
// Drops the answers still waiting, so none leaks into the next case.
void ForgetPendingAnswers();

}  // namespace testsupport
