#pragma once
// The real window in-process, on a scratch install root and a PATH without an opener.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "app/app.h"
#include "logclient/logd_process.h"
#include "support/dialogs.h"
#include "support/fake_root.h"
#include "support/fixtures.h"

namespace apptest {

inline constexpr const char* kKeywardConfigText = "<KeywardConfig server=\"support-lab\"/>\n";

// With the window assets of the source tree, a configuration and quick diagnostics tools.
inline void MakeWindowInstallRoot(const std::filesystem::path& root) {
  testsupport::MakeFakeInstallRoot(root, NORVEX_SOURCE_DIR);
  testsupport::WriteFile(root / "config/KeywardConfig.xml", kKeywardConfigText);
  // The dump tool prints where it wrote its dump, as the client's tool does.
  testsupport::WriteScript(root / "util/envdump",
                           "out=\"$(dirname \"$0\")/envdump.out\"\necho \"PATH=$PATH\" > \"$out\"\necho \"$out\"");
  testsupport::WriteScript(root / "util/desklinecheck.sh", "echo \"client check: all services answer\"");
}

// Member names of a .tar.gz, sorted, one a line; and the content of one member.
inline std::string ArchiveMembers(const std::filesystem::path& archive) {
  return testsupport::RunAndCapture("tar -tzf '" + archive.string() + "' 2>/dev/null | LC_ALL=C /usr/bin/sort");
}
inline std::string ArchiveMember(const std::filesystem::path& archive, const std::string& name) {
  return testsupport::RunAndCapture("tar -xzOf '" + archive.string() + "' '" + name + "' 2>/dev/null");
}

class WindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // The area and the socket stay: the logging client keeps them for the process.
    std::filesystem::remove_all(Logs());
    std::filesystem::remove(Marker());
    std::filesystem::create_directories(Logs());
    MakeWindowInstallRoot(root_.path());
    testsupport::LinkSystemTools(bin_, {"sh", "cp", "mkdir", "rm", "find", "tar", "gzip", "dirname", "pgrep",
                                        "uname", "cut", "cat", "which"});
    app_ = std::make_unique<App>();
    gApp = app_.get();
  }
  void TearDown() override {
    testsupport::ForgetPendingAnswers();
    // Closing destroyed the window; the builder holds the rest.
    if (app_->builder) g_object_unref(app_->builder);
    gApp = nullptr;
  }

  // App::Run with body called inside its loop, then the window closed as a user does: that must end it.
  void RunWindow(const std::function<void(GtkWidget* window)>& body) {
    std::function<void()> inLoop = [this, &body] {
      GtkWidget* window = GTK_WIDGET(gtk_builder_get_object(app_->builder, "logging"));
      body(window);
      gtk_window_close(GTK_WINDOW(window));
    };
    g_idle_add([](gpointer run) { return (*static_cast<std::function<void()>*>(run))(), G_SOURCE_REMOVE; }, &inLoop);
    app_->Run();
  }

  // The logging client keeps its first HOME for the process: all window tests share one, with a logd.
  static const std::filesystem::path& Home() {
    static testsupport::TempDir home;
    static const logclient_test::LogdProcess logd(home.path());
    EXPECT_TRUE(logd.listening()) << logd.Errors();
    setenv("HOME", home.c_str(), 1);
    return home.path();
  }
  std::filesystem::path Logs() const { return Home() / ".ORBClient/logs"; }
  std::filesystem::path Issue() const { return Logs() / "issuereproduce"; }
  std::filesystem::path Marker() const { return Home() / ".ORBClient/.kvlogEnabled"; }

  testsupport::TempDir root_, scratch_;
  std::filesystem::path bin_ = scratch_ / "bin";
  testsupport::ScopedEnv orbroot_{"ORBROOT", root_.str().c_str()};
  testsupport::ScopedEnv path_{"PATH", bin_.c_str()};
  std::unique_ptr<App> app_;
};

inline bool Visible(GtkWidget* widget) { return gtk_widget_get_visible(widget); }
inline void Click(GtkWidget* button) { gtk_button_clicked(GTK_BUTTON(button)); }

}  // namespace apptest
