#include "window_fixture.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>

#include "app_root.h"
#include "logclient/logclient.h"
#include "support/files.h"

namespace apptest {
namespace {

// The logging client keeps the first HOME it sees for the life of the
// process, so all window tests share one; a socket that listens (and never
// reads) stands in for logd, so that nothing goes to the system log.
struct SharedHome {
  testsupport::TempDir folder;
  int logd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  SharedHome() {
    setenv("HOME", folder.str().c_str(), 1);
    sockaddr_un address{AF_UNIX, {}};
    std::strncpy(address.sun_path, log_socket_path(), sizeof address.sun_path - 1);
    bind(logd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    listen(logd, 16);
  }
};

gboolean RunBodyThenQuit(gpointer body) {
  (*static_cast<std::function<void()>*>(body))();
  gtk_main_quit();
  return G_SOURCE_REMOVE;
}

}  // namespace

const std::filesystem::path& WindowTest::Home() {
  static SharedHome home;
  return home.folder.path();
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
  if (app_->builder) {
    gtk_widget_destroy(GTK_WIDGET(gtk_builder_get_object(app_->builder, "logging")));
    g_object_unref(app_->builder);
  }
  gApp = nullptr;
}

void WindowTest::RunWindow(const std::function<void(GtkWidget* window)>& body) {
  std::function<void()> inLoop = [this, &body] { body(GTK_WIDGET(gtk_builder_get_object(app_->builder, "logging"))); };
  g_idle_add(RunBodyThenQuit, &inLoop);
  app_->Run();
}

std::string LabelText(GtkWidget* widget) {
  if (GTK_IS_BUTTON(widget)) return gtk_button_get_label(GTK_BUTTON(widget));
  return gtk_label_get_text(GTK_LABEL(widget));
}

}  // namespace apptest
