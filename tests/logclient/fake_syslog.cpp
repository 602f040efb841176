#include "fake_syslog.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace logclient_test {

std::vector<std::string>& SystemLogCalls() {
  static std::vector<std::string> calls;
  return calls;
}

}  // namespace logclient_test

namespace {

// Writer threads fall back to the system log together once the link fails.
void Record(std::string call) {
  static std::mutex lock;
  std::lock_guard<std::mutex> hold(lock);
  logclient_test::SystemLogCalls().push_back(std::move(call));
}

}  // namespace

extern "C" {

void openlog(const char* ident, int option, int facility) {
  Record("openlog " + std::string(ident) + " " + std::to_string(option) + " " + std::to_string(facility));
}

int setlogmask(int mask) {
  Record("setlogmask " + std::to_string(mask));
  return 0;
}

void vsyslog(int priority, const char* format, va_list args) {
  char text[512];
  vsnprintf(text, sizeof text, format, args);
  Record("syslog " + std::to_string(priority) + " " + text);
}

void syslog(int priority, const char* format, ...) {
  va_list args;
  va_start(args, format);
  vsyslog(priority, format, args);
  va_end(args);
}

void closelog() { Record("closelog"); }

}  // extern "C"

// A fortified build of the library calls these in place of syslog and vsyslog.
extern "C" {

void __vsyslog_chk(int priority, int, const char* format, va_list args) { vsyslog(priority, format, args); }

void __syslog_chk(int priority, int, const char* format, ...) {
  va_list args;
  va_start(args, format);
  vsyslog(priority, format, args);
  va_end(args);
}

}  // extern "C"
