#include "window_fixture.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "app_root.h"
#include "support/files.h"

namespace apptest {
namespace {

// Started once per process before the first log call, stopped at exit.
class LogdPeer {
 public:
  explicit LogdPeer(const std::filesystem::path& home) : output_(home.parent_path() / "logd-peer.out") {
    const std::string socket = home.string() + "//.ORBClient/.nvxndclogsocket";
    std::filesystem::create_directories(home / ".ORBClient");
    pid_ = fork();
    if (pid_ == 0) {
      if (!freopen(output_.c_str(), "w", stdout)) _exit(127);
      execl(LOGD_PEER_PATH, LOGD_PEER_PATH, socket.c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
    for (int i = 0; i < 200 && !std::filesystem::exists(home / ".ORBClient/.nvxndclogsocket"); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ~LogdPeer() {
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
  }
  std::string Output() const { return testsupport::ReadFile(output_); }

 private:
  std::filesystem::path output_;
  pid_t pid_ = -1;
};

struct SharedState {
  testsupport::TempDir base;
  std::filesystem::path home = base / "home";
  LogdPeer peer{home};
};

SharedState& Shared() {
  static SharedState state;
  return state;
}

gboolean RunBodyThenQuit(gpointer data) {
  (*static_cast<std::function<void()>*>(data))();
  gtk_main_quit();
  return G_SOURCE_REMOVE;
}

}  // namespace

const std::filesystem::path& SharedHome() { return Shared().home; }

std::string LogdPeerOutput() { return Shared().peer.Output(); }

void WindowTest::SetUp() {
  // The area and the socket stay: the logging client keeps them for the process.
  std::filesystem::remove_all(LogsFolder());
  std::filesystem::remove(Marker());
  std::filesystem::create_directories(LogsFolder());
  MakeWindowInstallRoot(root_.path());
  homeEnv_ = std::make_unique<testsupport::ScopedEnv>("HOME", home().c_str());
  rootEnv_ = std::make_unique<testsupport::ScopedEnv>("ORBROOT", root_.str().c_str());
  app_ = std::make_unique<App>();
  gApp = app_.get();
}

void WindowTest::TearDown() {
  if (app_ && app_->builder) {
    if (GtkWidget* window = GTK_WIDGET(gtk_builder_get_object(app_->builder, "logging")))
      gtk_widget_destroy(window);
    g_object_unref(app_->builder);
  }
  gApp = nullptr;
}

void WindowTest::RunWindow(const std::function<void(GtkWidget* window)>& body) {
  std::function<void()> inLoop = [this, &body] {
    window_ = GTK_WIDGET(gtk_builder_get_object(app_->builder, "logging"));
    body(window_);
  };
  g_idle_add(RunBodyThenQuit, &inLoop);
  app_->Run();
}

std::string LabelText(GtkWidget* widget) {
  if (GTK_IS_BUTTON(widget)) return gtk_button_get_label(GTK_BUTTON(widget));
  return gtk_label_get_text(GTK_LABEL(widget));
}

bool Visible(GtkWidget* widget) { return gtk_widget_get_visible(widget); }

}  // namespace apptest
