#include "logd/record_line.h"

#include <cstdio>
#include <ctime>

#include "logclient/logclient.h"

namespace logd {
namespace {

// The local time down to the second, kept for the next record: records come
// in bursts from the same second, and the time zone lookup is the costly part.
const std::string& SecondsText(uint32_t seconds, bool withDate) {
  static uint32_t lastSeconds = 0;
  static bool lastWithDate = false;
  static std::string last;
  if (last.empty() || seconds != lastSeconds || withDate != lastWithDate) {
    const time_t when = static_cast<time_t>(seconds);
    struct tm local {};
    localtime_r(&when, &local);
    char text[32];
    last.assign(text, strftime(text, sizeof text, withDate ? "%Y-%m-%d %H:%M:%S" : "%H:%M:%S", &local));
    lastSeconds = seconds;
    lastWithDate = withDate;
  }
  return last;
}

std::string TimeText(const RecordMessage& record, uint32_t flags) {
  std::string text = SecondsText(record.seconds, flags & LOG_FLAG_LOGD_DATE);
  if (flags & LOG_FLAG_LOGD_MICROSECONDS) {
    char micros[16];
    snprintf(micros, sizeof micros, ".%06u", record.micros % 1000000u);
    text += micros;
  }
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
