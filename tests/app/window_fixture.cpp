#include "window_fixture.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>

#include "logclient/logclient.h"
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

bool AllClassesAt(int level) {
  for (int logClass = 0; logClass < 60; ++logClass)
    if (log_get_class_level(logClass) != level) return false;
  return true;
}

// The logging client keeps the first HOME it sees for the life of the
// process, so all window tests share one; a socket that listens (and never
// reads) stands in for logd, so that nothing goes to the system log.
const std::filesystem::path& WindowTest::Home() {
  static testsupport::TempDir home;
  static const int logd = [] {
    setenv("HOME", home.str().c_str(), 1);
    sockaddr_un address{AF_UNIX, {}};
    std::strncpy(address.sun_path, log_socket_path(), sizeof address.sun_path - 1);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    return listen(fd, 16) == 0 ? fd : -1;
  }();
  EXPECT_GE(logd, 0) << "no logd stand-in";
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
