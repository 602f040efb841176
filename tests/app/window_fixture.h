#pragma once
// The real main window run in-process against a temporary install root and a
// PATH of the tools the flows use (no opener); what the logmgr runs share.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "app/app.h"
#include "support/dialogs.h"
#include "support/fixtures.h"

namespace apptest {

// With the window assets of the source tree, a configuration and quick diagnostics tools.
void MakeWindowInstallRoot(const std::filesystem::path& root);
inline constexpr const char* kKeywardConfigText = "<KeywardConfig server=\"support-lab\"/>\n";
// Member names of a .tar.gz, sorted, one a line; and the content of one member.
inline std::string ArchiveMembers(const std::filesystem::path& archive) {
  return testsupport::RunAndCapture("tar -tzf '" + archive.string() + "' 2>/dev/null | LC_ALL=C /usr/bin/sort");
}
inline std::string ArchiveMember(const std::filesystem::path& archive, const std::string& name) {
  return testsupport::RunAndCapture("tar -xzOf '" + archive.string() + "' '" + name + "' 2>/dev/null");
}

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

inline std::string LabelText(GtkWidget* widget) {
  return GTK_IS_BUTTON(widget) ? gtk_button_get_label(GTK_BUTTON(widget)) : gtk_label_get_text(GTK_LABEL(widget));
}
inline bool Visible(GtkWidget* widget) { return gtk_widget_get_visible(widget); }
inline void Click(GtkWidget* button) { gtk_button_clicked(GTK_BUTTON(button)); }

}  // namespace apptest
