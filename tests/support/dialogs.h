#pragma once
// Answers the modal dialogs that code under test runs with gtk_dialog_run:
// a main-loop timeout finds the dialog among the toplevels and acts on it.
#include <gtk/gtk.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace testsupport {

// Runs act once on the first visible dialog of the given type (polled every
// 20 ms while the code under test spins its nested loop). The poll stops after
// timeoutMs; *seen (if given) tells whether it fired. The default type
// matches dialogs other than file choosers.
void WhenDialogAppears(std::function<void(GtkDialog*)> act, GType type = GTK_TYPE_DIALOG,
                       int timeoutMs = 10000, bool* seen = nullptr);

// Records what the next message dialog shows, then answers it with response.
struct DialogRecord {
  bool seen = false;
  std::string title;
  std::string text;                  // all label texts of the content area, joined by "\n"
  std::vector<std::string> buttons;  // button labels in order
  std::string message;               // text without the button labels
  std::string iconName;
};
void AnswerNextDialog(int response, DialogRecord* record = nullptr, GType type = GTK_TYPE_DIALOG);

// Types path into the next file chooser and accepts it; or cancels when path is empty.
void SaveAsInNextFileChooser(const std::filesystem::path& path, bool* seen = nullptr,
                             std::string* suggestedName = nullptr);

// Lets the main loop handle everything that is pending.
void DrainEvents();

// Label texts below a widget, depth first.
std::vector<std::string> CollectLabelTexts(GtkWidget* widget);

}  // namespace testsupport
