// x-drive: the window driver as a command, for scripts.
//   x-drive wait TITLE [SECONDS]   prints the window id once it is shown
//   x-drive key TITLE KEYSYM...    types keys into it, one after the other
//   x-drive close TITLE            asks it to close, as a window manager would
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "x_drive.h"

namespace {

int Act(Display* display, const std::string& verb, const std::string& title, int argc, char** argv) {
  const int seconds = verb == "wait" && argc > 3 ? std::atoi(argv[3]) : 20;
  const Window window = xdrive::WaitForWindow(display, title, seconds * 1000);
  if (!window) {
    std::fprintf(stderr, "x-drive: no window titled \"%s\"\n", title.c_str());
    return 1;
  }
  if (verb == "wait") {
    std::printf("0x%lx\n", window);
  } else if (verb == "key") {
    for (int i = 3; i < argc; ++i) {
      if (!xdrive::PressKey(display, window, argv[i])) return 1;
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
  } else {
    xdrive::RequestClose(display, window);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string verb = argc < 3 ? "" : argv[1];
  if (verb != "wait" && verb != "key" && verb != "close") {
    std::fprintf(stderr, "usage: x-drive wait|key|close TITLE [ARGS]\n");
    return 2;
  }
  Display* display = XOpenDisplay(nullptr);
  if (!display) {
    std::fprintf(stderr, "x-drive: cannot open the display\n");
    return 1;
  }
  const int status = Act(display, verb, argv[2], argc, argv);
  XCloseDisplay(display);
  return status;
}
