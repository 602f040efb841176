#include "fake_syslog.h"

#include <cstdarg>
#include <cstdio>

namespace logclient_test {

std::vector<std::string>& SystemLogCalls() {
  static std::vector<std::string> calls;
  return calls;
}

}  // namespace logclient_test

using logclient_test::SystemLogCalls;

extern "C" {

void openlog(const char* ident, int option, int facility) {
  SystemLogCalls().push_back("openlog " + std::string(ident) + " " + std::to_string(option) + " " +
                             std::to_string(facility));
}

int setlogmask(int mask) {
  SystemLogCalls().push_back("setlogmask " + std::to_string(mask));
  return 0;
}

void vsyslog(int priority, const char* format, va_list args) {
  char text[512];
  vsnprintf(text, sizeof text, format, args);
  SystemLogCalls().push_back("syslog " + std::to_string(priority) + " " + text);
}

void syslog(int priority, const char* format, ...) {
  va_list args;
  va_start(args, format);
  vsyslog(priority, format, args);
  va_end(args);
}

void closelog() { SystemLogCalls().push_back("closelog"); }

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
