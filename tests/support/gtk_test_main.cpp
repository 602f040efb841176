// GTK test entry: a private Xvfb display and user folders, GLib warnings fatal.
#include <gtest/gtest.h>
#include <gtk/gtk.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/fixtures.h"
#include "support/processes.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (::testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
  // GLib fixes these at first use; the file chooser's recent files and caches land here.
  testsupport::TempDir dirs;
  for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) setenv(name, dirs.str().c_str(), 1);
  // No session bus or settings daemon here: neither is looked for.
  for (auto [name, value] : {std::pair{"GDK_BACKEND", "x11"}, {"GSETTINGS_BACKEND", "memory"}, {"NO_AT_BRIDGE", "1"}})
    setenv(name, value, 1);
  int fds[2];
  if (pipe(fds) != 0) return 1;
  const pid_t server = testsupport::StartProgram(
      {"Xvfb", "-displayfd", std::to_string(fds[1]), "-screen", "0", "1280x1024x24", "-nolisten", "tcp"});
  // Xvfb picks a free display and writes its number once it accepts clients.
  close(fds[1]);
  std::string display = ":";
  for (char c; read(fds[0], &c, 1) == 1 && c != '\n';) display += c;
  close(fds[0]);
  setenv("DISPLAY", display.c_str(), 1);
  if (!gtk_init_check(nullptr, nullptr)) {
    std::cerr << "GTK could not open " << display << '\n';
    return 1;
  }
  // Colours are read as the style gives them, not half-way through a fade.
  g_object_set(gtk_settings_get_default(), "gtk-enable-animations", FALSE, nullptr);
  g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
  const int result = RUN_ALL_TESTS();
  kill(server, SIGTERM);
  waitpid(server, nullptr, 0);
  return result;
}
