#include "support/xvfb.h"

#include <fcntl.h>
#include <gtk/gtk.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace testsupport {

pid_t StartXvfb() {
  int fds[2];
  if (pipe(fds) != 0) return -1;
  pid_t server = fork();
  if (server < 0) return -1;
  if (server == 0) {
    close(fds[0]);
    int devnull = open("/dev/null", O_WRONLY);
    if (devnull >= 0) {
      dup2(devnull, STDOUT_FILENO);
      dup2(devnull, STDERR_FILENO);
    }
    std::string fd = std::to_string(fds[1]);
    execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1280x1024x24", "-nolisten",
           "tcp", "-noreset", static_cast<char*>(nullptr));
    _exit(127);
  }
  close(fds[1]);
  // Xvfb writes the display number it chose once it accepts connections.
  std::string number;
  char c;
  while (read(fds[0], &c, 1) == 1 && c != '\n') number += c;
  close(fds[0]);
  if (number.empty()) {
    StopXvfb(server);
    return -1;
  }
  setenv("DISPLAY", (":" + number).c_str(), 1);
  return server;
}

void StopXvfb(pid_t server) {
  if (server <= 0) return;
  kill(server, SIGTERM);
  int status;
  waitpid(server, &status, 0);
}

void XvfbEnvironment::SetUp() {
  setenv("GDK_BACKEND", "x11", 1);
  setenv("NO_AT_BRIDGE", "1", 1);
  setenv("GSETTINGS_BACKEND", "memory", 1);
  userDirs_ = std::make_unique<TempDir>();
  for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
    const std::filesystem::path folder = userDirs_->path() / name;
    std::filesystem::create_directories(folder);
    setenv(name, folder.c_str(), 1);
  }
  server_ = StartXvfb();
  ASSERT_GT(server_, 0) << "Xvfb could not be started";
  ASSERT_TRUE(gtk_init_check(nullptr, nullptr)) << "GTK could not open the display";
  g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
}

void XvfbEnvironment::TearDown() {
  StopXvfb(server_);
  userDirs_.reset();
}

}  // namespace testsupport
