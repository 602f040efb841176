#include "fake_syslog.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

std::vector<std::string>& logclient_test::SystemLogCalls() {
  static std::vector<std::string> calls;
  return calls;
}

extern "C" {
void vsyslog(int priority, const char* format, va_list args) {
  static std::mutex lock;
  char text[512];
  vsnprintf(text, sizeof text, format, args);
  std::lock_guard<std::mutex> hold(lock);
  logclient_test::SystemLogCalls().push_back(std::to_string(priority) + " " + text);
}
void syslog(int priority, const char* format, ...) {
  va_list args;
  va_start(args, format);
  vsyslog(priority, format, args);
  va_end(args);
}
// What a fortified build of the library calls instead.
void __vsyslog_chk(int priority, int, const char* format, va_list args) { vsyslog(priority, format, args); }
void __syslog_chk(int priority, int, const char* format, ...) {
  va_list args;
  va_start(args, format);
  vsyslog(priority, format, args);
  va_end(args);
}
}
