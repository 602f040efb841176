#pragma once
// Drives top-level windows of another process from outside, as a user and a
// window manager would: find by title, press keys, ask to close.
#include <X11/Xlib.h>

#include <string>

namespace xdrive {

// Viewable top-level windows whose title equals title.
int CountWindows(Display* display, const std::string& title);
// The first such window, or 0; waits up to timeoutMs for it to appear.
Window WaitForWindow(Display* display, const std::string& title, int timeoutMs);
// Gives the window the keyboard focus and types one key (a keysym name such as "Return").
bool PressKey(Display* display, Window window, const std::string& keysymName);
// The window manager's close request (WM_DELETE_WINDOW).
void RequestClose(Display* display, Window window);

}  // namespace xdrive
