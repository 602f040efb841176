#include "tools/logd/record_line.h"

#include <cstdio>
#include <ctime>

#include "logclient/logclient.h"

namespace logd {
namespace {

std::string TimeText(const RecordMessage& record, uint32_t flags) {
  const time_t seconds = static_cast<time_t>(record.seconds);
  struct tm local {};
  localtime_r(&seconds, &local);
  char text[64];
  size_t length = strftime(text, sizeof text, (flags & LOG_FLAG_LOGD_DATE) ? "%Y-%m-%d %H:%M:%S" : "%H:%M:%S",
                           &local);
  if (flags & LOG_FLAG_LOGD_MICROSECONDS)
    snprintf(text + length, sizeof text - length, ".%06u", record.micros % 1000000u);
  return text;
}

// A name from the area's tables, or the number when there is none to look at.
std::string NameOr(const char* name, unsigned number) { return name ? name : std::to_string(number); }

}  // namespace

std::string RecordLine(const RecordMessage& record, uint32_t flags) {
  std::string line = TimeText(record, flags);
  line += ' ' + NameOr(log_get_level_name(record.level), record.level);
  line += ' ' + NameOr(log_get_class_name(record.logClass), record.logClass);
  line += ' ' + std::to_string(record.threadId);
  line += ' ' + EscapedText(record.text);
  line += '\n';
  return line;
}

}  // namespace logd
