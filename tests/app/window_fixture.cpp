#include "window_fixture.h"

#include "app_root.h"

namespace apptest {
namespace {

// The peer starts before the first log call and stops at exit.
struct SharedState {
  testsupport::TempDir base;
  std::filesystem::path home = base / "home";
  logclient_test::LogdPeerProcess peer{logclient_test::SocketPathFor(home.string()), base.path()};
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

const logclient_test::LogdPeerProcess& LogdPeer() { return Shared().peer; }

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
