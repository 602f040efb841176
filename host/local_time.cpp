#include "host/local_time.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <iostream>

std::string FormatLocalTime(const char* format) {
  char buffer[256];
  time_t now = time(nullptr);
  struct tm local {};
  if (localtime_r(&now, &local) == nullptr) return "";
  size_t length = strftime(buffer, sizeof(buffer), format, &local);
  return std::string(buffer, length);
}

std::string GetTimestampForFileName() {
  errno = 0;
  std::string stamp = FormatLocalTime("%F_%H_%M_%S_%z");
  if (stamp.empty() && errno != 0) {
    std::cerr << "Some issue with date conversion\n";
    return "time";
  }
  return stamp;
}

int64_t ParseLocalTime(const std::string& text, const char* format) {
  char buffer[256] = {};
  text.copy(buffer, sizeof(buffer) - 1);
  // Fields the format leaves alone start from zero, not from indeterminate stack bytes.
  struct tm parsed {};
  strptime(buffer, format, &parsed);
  parsed.tm_isdst = -1;
  return static_cast<int64_t>(mktime(&parsed));
}
