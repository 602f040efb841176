#include "window_fixture.h"

#include "logclient/logd_process.h"
#include "support/fake_root.h"

namespace apptest {

void MakeWindowInstallRoot(const std::filesystem::path& root) {
  testsupport::MakeFakeInstallRoot(root);
  const std::filesystem::path source(NORVEX_SOURCE_DIR);
  std::filesystem::create_directory_symlink(source / "gtk", root / "gtk");
  std::filesystem::create_directory_symlink(source / "icons", root / "icons");
  testsupport::WriteFile(root / "config/KeywardConfig.xml", kKeywardConfigText);
  // The dump tool prints where it wrote its dump, as the client's tool does.
  testsupport::WriteScript(root / "util/envdump",
                           "out=\"$(dirname \"$0\")/envdump.out\"\necho \"PATH=$PATH\" > \"$out\"\necho \"$out\"");
  testsupport::WriteScript(root / "util/desklinecheck.sh", "echo \"client check: all services answer\"");
}

// The logging client keeps the first HOME it sees for the life of the
// process, so all window tests share one, and a logd of their own.
const std::filesystem::path& WindowTest::Home() {
  static testsupport::TempDir home;
  static const logclient_test::LogdProcess logd(home.path());
  EXPECT_TRUE(logd.listening()) << logd.Errors();
  setenv("HOME", home.c_str(), 1);
  return home.path();
}

void WindowTest::SetUp() {
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

void WindowTest::TearDown() {
  testsupport::ForgetPendingAnswers();
  // Closing destroyed the window; the builder holds the rest.
  if (app_->builder) g_object_unref(app_->builder);
  gApp = nullptr;
}

void WindowTest::RunWindow(const std::function<void(GtkWidget* window)>& body) {
  std::function<void()> inLoop = [this, &body] {
    GtkWidget* window = GTK_WIDGET(gtk_builder_get_object(app_->builder, "logging"));
    body(window);
    gtk_window_close(GTK_WINDOW(window));
  };
  g_idle_add([](gpointer run) { return (*static_cast<std::function<void()>*>(run))(), G_SOURCE_REMOVE; }, &inLoop);
  app_->Run();
}

}  // namespace apptest
