#include "x_drive.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <chrono>
#include <thread>

namespace xdrive {
namespace {

bool HasTitle(Display* display, Window window, const std::string& title) {
  XWindowAttributes attributes;
  if (!XGetWindowAttributes(display, window, &attributes) || attributes.map_state != IsViewable) return false;
  char* name = nullptr;
  if (!XFetchName(display, window, &name) || !name) return false;
  const bool same = title == name;
  XFree(name);
  return same;
}

template <typename Visit>
void ForEachTopLevel(Display* display, Visit visit) {
  Window root = 0, parent = 0;
  Window* children = nullptr;
  unsigned count = 0;
  if (!XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count)) return;
  for (unsigned i = 0; i < count; ++i) visit(children[i]);
  if (children) XFree(children);
}

}  // namespace

int CountWindows(Display* display, const std::string& title) {
  int count = 0;
  ForEachTopLevel(display, [&](Window window) { count += HasTitle(display, window, title) ? 1 : 0; });
  return count;
}

Window WaitForWindow(Display* display, const std::string& title, int timeoutMs) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  do {
    Window found = 0;
    ForEachTopLevel(display, [&](Window window) {
      if (!found && HasTitle(display, window, title)) found = window;
    });
    if (found) return found;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  } while (std::chrono::steady_clock::now() < deadline);
  return 0;
}

bool PressKey(Display* display, Window window, const std::string& keysymName) {
  const KeySym keysym = XStringToKeysym(keysymName.c_str());
  const KeyCode code = keysym == NoSymbol ? 0 : XKeysymToKeycode(display, keysym);
  if (code == 0) return false;
  // With no window manager nobody else hands out the focus.
  XSetInputFocus(display, window, RevertToParent, CurrentTime);
  XSync(display, False);
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  XTestFakeKeyEvent(display, code, True, CurrentTime);
  XTestFakeKeyEvent(display, code, False, CurrentTime);
  XSync(display, False);
  return true;
}

void RequestClose(Display* display, Window window) {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
  event.xclient.data.l[1] = CurrentTime;
  XSendEvent(display, window, False, NoEventMask, &event);
  XSync(display, False);
}

}  // namespace xdrive
