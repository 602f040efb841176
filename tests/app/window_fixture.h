#pragma once
// Runs the real main window in-process against a temporary install root and
// the test process's one temporary HOME.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "app/app.h"
#include "logclient/logd_peer_process.h"
#include "support/dialogs.h"
#include "support/temp_dir.h"

namespace apptest {

// The logging client caches its per-user paths for the life of the process,
// so every test of this executable shares one HOME, with a logd peer listening
// on its socket. Its client folders are emptied before each test.
const std::filesystem::path& SharedHome();
const logclient_test::LogdPeerProcess& LogdPeer();

class WindowTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // App::Run with body called from inside the running loop; the loop is quit
  // after body returns.
  void RunWindow(const std::function<void(GtkWidget* window)>& body);

  const std::filesystem::path& home() const { return SharedHome(); }
  std::filesystem::path LogsFolder() const { return home() / ".ORBClient/logs"; }
  std::filesystem::path IssueFolder() const { return home() / ".ORBClient/logs/issuereproduce"; }
  std::filesystem::path Marker() const { return home() / ".ORBClient/.kvlogEnabled"; }

  testsupport::TempDir root_;
  testsupport::TempDir scratch_;
  std::unique_ptr<testsupport::ScopedEnv> homeEnv_;
  std::unique_ptr<testsupport::ScopedEnv> rootEnv_;
  std::unique_ptr<App> app_;
  GtkWidget* window_ = nullptr;
};

std::string LabelText(GtkWidget* widget);
bool Visible(GtkWidget* widget);
inline std::string MessageText(const testsupport::DialogRecord& record) { return record.message; }
inline void Click(GtkWidget* button) { gtk_button_clicked(GTK_BUTTON(button)); }

}  // namespace apptest
