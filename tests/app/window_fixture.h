#pragma once
// Runs the real main window in-process against a temporary install root, a
// PATH of the tools the flows use (no opener), and the test process's HOME.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <filesystem>
#include <functional>
#include <memory>

#include "app/app.h"
#include "support/dialogs.h"
#include "support/temp_dir.h"

namespace apptest {

class WindowTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  // App::Run with body called from inside the running loop; then the window
  // is closed as a user closes it, which must end the loop.
  void RunWindow(const std::function<void(GtkWidget* window)>& body);

  static const std::filesystem::path& Home();
  std::filesystem::path Logs() const { return Home() / ".ORBClient/logs"; }
  std::filesystem::path Issue() const { return Logs() / "issuereproduce"; }
  std::filesystem::path Marker() const { return Home() / ".ORBClient/.kvlogEnabled"; }

  testsupport::TempDir root_, scratch_;
  std::filesystem::path bin_ = scratch_ / "bin";
  testsupport::ScopedEnv orbroot_{"ORBROOT", root_.str().c_str()};
  testsupport::ScopedEnv path_{"PATH", bin_.c_str()};
  std::unique_ptr<App> app_;
};

std::string LabelText(GtkWidget* widget);
inline bool Visible(GtkWidget* widget) { return gtk_widget_get_visible(widget); }
inline void Click(GtkWidget* button) { gtk_button_clicked(GTK_BUTTON(button)); }

}  // namespace apptest
