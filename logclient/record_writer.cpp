// The log entry points: level filter, record building and the system-log
// fallback.
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "logclient/class_table.h"
#include "logclient/client_link.h"
#include "logclient/config_area.h"
#include "logclient/logclient.h"
#include "logclient/record_format.h"
#include "logclient/wire_format.h"

namespace logclient {
namespace {

// "[" + a 15-character thread name + "]: " and a NUL.
inline constexpr size_t kPrefixSize = 1 + 15 + 3 + 1;

// gettid and the thread-name call are system calls; a record must cost little
// more than its write, so both are taken once per thread. A thread renamed
// after its first record keeps its old name in the prefix.
struct ThreadIdentity {
  bool known = false;
  uint16_t tid = 0;
  uint8_t prefixLength = 0;
  char prefix[kPrefixSize] = {};
};

thread_local ThreadIdentity t_thread;

// The forking thread is the child's only thread and carries its parent's
// cache: the child has a new thread id.
void ForgetThreadInChild() { t_thread.known = false; }

[[maybe_unused]] const int g_atforkRegistered =
    pthread_atfork(nullptr, nullptr, ForgetThreadInChild);

const ThreadIdentity& CurrentThread() {
  ThreadIdentity& self = t_thread;
  if (self.known) return self;
  char name[16] = {};
  if (prctl(PR_GET_NAME, name) != 0) name[0] = '\0';
  name[sizeof name - 1] = '\0';
  int length = snprintf(self.prefix, sizeof self.prefix, "[%s]: ", name);
  self.prefixLength = static_cast<uint8_t>(length);
  self.tid = static_cast<uint16_t>(gettid());
  self.known = true;
  return self;
}

int SyslogPriority(int level) {
  switch (level) {
    case LOG_LEVEL_INFO: return LOG_NOTICE;
    case LOG_LEVEL_WARNING: return LOG_WARNING;
    case LOG_LEVEL_ERROR: return LOG_ERR;
    case LOG_LEVEL_FATAL: return LOG_ALERT;
    default: return LOG_INFO;
  }
}

// Formats the text (thread-name prefix first when the area asks for it) into
// the text buffer and returns its length without the NUL, cut to fit.
size_t FormatText(char* text, const ThreadIdentity& thread, const char* format, va_list args) {
  size_t length = 0;
  uint32_t flags = g_area != nullptr ? LoadWord(g_area->flags) : 0;
  if (flags & LOG_FLAG_THREAD_NAME) {
    memcpy(text, thread.prefix, thread.prefixLength);
    length = thread.prefixLength;
  }
  return length + FormatRecordText(text + length, wire::kTextBufferSize - length, format, args);
}

// Sends one record on the link; false when the link is down.
bool SendRecord(int logClass, int level, const char* format, va_list args) {
  using namespace wire;
  LinkUse link;
  if (link.fd() < 0) return false;
  unsigned char message[kHeaderSize + kMaxRecordBody];
  unsigned char* body = message + kHeaderSize;
  const ThreadIdentity& thread = CurrentThread();
  size_t textLength =
      FormatText(reinterpret_cast<char*>(body + kRecordFixedSize), thread, format, args);
  timeval now;
  gettimeofday(&now, nullptr);  // served by the vDSO, no system call

  size_t bodyLength = kRecordFixedSize + textLength + 1;
  PutHeader(message, bodyLength, kTypeRecord);
  PutU16(body + kRecordLevel, static_cast<uint16_t>(level));
  PutU16(body + kRecordClass, static_cast<uint16_t>(logClass));
  PutU16(body + kRecordThread, thread.tid);
  PutU32(body + kRecordSeconds, static_cast<uint32_t>(now.tv_sec));
  PutU32(body + kRecordMicros, static_cast<uint32_t>(now.tv_usec));

  // One write keeps records from different threads whole on the stream. A
  // short or failed write leaves logd mid-record, so the link cannot be
  // trusted again and stays down.
  ssize_t written = write(link.fd(), message, kHeaderSize + bodyLength);
  if (written != static_cast<ssize_t>(kHeaderSize + bodyLength)) TakeLinkDown(link.fd());
  return true;
}

// The filter runs before any va_list work so that a dropped call costs a few
// loads: the initialised flag, the class's word and, only for inheriting
// classes, its parents' words.
inline bool AcceptsClassed(int logClass, int level, const char* originA, const char* originB,
                           const char* format) {
  if (!g_client.initialised.load(std::memory_order_relaxed) || originA == nullptr ||
      originB == nullptr || format == nullptr)
    return false;
  if (level == LOG_LEVEL_AOL) return true;
  if (level < LOG_LEVEL_VERBOSE || level > LOG_LEVEL_AOL) return false;
  int effective = EffectiveLevelIn(g_area, logClass);
  return effective >= 1 && level >= effective;
}

[[gnu::noinline]] void DeliverClassed(int logClass, int level, const char* format,
                                      va_list args) {
  if (!SendRecord(logClass, level, format, args) && g_client.syslogOpen)
    vsyslog(SyslogPriority(level), format, args);
}

}  // namespace
}  // namespace logclient

using logclient::g_client;

extern "C" {

void log_write_class_v(int log_class, int level, const char* origin_a, const char* origin_b,
                       int /*origin_number*/, const char* format, va_list args) {
  if (!logclient::AcceptsClassed(log_class, level, origin_a, origin_b, format)) return;
  logclient::DeliverClassed(log_class, level, format, args);
}

void log_write_class(int log_class, int level, const char* origin_a, const char* origin_b,
                     int /*origin_number*/, const char* format, ...) {
  if (!logclient::AcceptsClassed(log_class, level, origin_a, origin_b, format)) return;
  va_list args;
  va_start(args, format);
  logclient::DeliverClassed(log_class, level, format, args);
  va_end(args);
}

void log_write(int level, const char* origin_a, const char* origin_b, int /*origin_number*/,
               const char* format, ...) {
  if (!g_client.initialised.load(std::memory_order_relaxed) || origin_a == nullptr ||
      origin_b == nullptr || format == nullptr)
    return;
  if (level < LOG_LEVEL_VERBOSE || level > LOG_LEVEL_FATAL) return;
  va_list args;
  va_start(args, format);
  if (g_client.syslogOpen) {
    va_list copy;
    va_copy(copy, args);
    vsyslog(logclient::SyslogPriority(level), format, copy);
    va_end(copy);
  }
  logclient::SendRecord(0, level, format, args);
  va_end(args);
}

}  // extern "C"
