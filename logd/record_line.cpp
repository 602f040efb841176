#include "logd/record_line.h"

#include <cstdio>
#include <ctime>

#include "logclient/class_table.h"
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

std::string TimeText(const timespec& when, uint32_t flags) {
  std::string text = SecondsText(static_cast<uint32_t>(when.tv_sec), flags & LOG_FLAG_LOGD_DATE);
  if (flags & LOG_FLAG_LOGD_MICROSECONDS) {
    char micros[16];
    snprintf(micros, sizeof micros, ".%06ld", when.tv_nsec / 1000 % 1000000);
    text += micros;
  }
  return text;
}

// The short name from a table, or the number when it is outside the table.
template <typename Row, size_t N>
std::string NameIn(const Row (&table)[N], unsigned number) {
  return number < N ? table[number].name : std::to_string(number);
}

std::string PeerText(const Peer& peer) {
  return "pid=" + std::to_string(peer.pid) + " uid=" + std::to_string(peer.uid);
}

}  // namespace

std::string RecordLine(const RecordMessage& record, uint32_t flags, const Peer& peer, const timespec& arrived) {
  std::string line = TimeText(arrived, flags);
  line += ' ' + NameIn(logclient::kLogLevelTable, record.level);
  line += ' ' + NameIn(logclient::kLogClassTable, record.logClass);
  line += ' ' + PeerText(peer) + " tid=" + std::to_string(record.threadId);
  line += ' ' + EscapedText(record.text);
  line += '\n';
  return line;
}

std::string SuppressedLine(uint64_t count, uint32_t flags, const Peer& peer, const timespec& now) {
  return TimeText(now, flags) + " logd: suppressed " + std::to_string(count) + " records of " + PeerText(peer) + "\n";
}

}  // namespace logd
