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

// The kernel's thread name: at most 15 characters and a NUL.
inline constexpr size_t kThreadNameSize = 16;

// gettid is a system call and a thread's id never changes, so it is taken
// once per thread. The name is read for every record: threads get renamed.
struct ThreadId {
  bool known = false;
  uint16_t tid = 0;
};

thread_local ThreadId t_thread;

// The forking thread is the child's only thread and carries its parent's
// cache: the child has a new thread id.
void ForgetThreadInChild() { t_thread.known = false; }

[[maybe_unused]] const int g_atforkRegistered =
    pthread_atfork(nullptr, nullptr, ForgetThreadInChild);

uint16_t CurrentThreadId() {
  ThreadId& self = t_thread;
  if (!self.known) {
    self.tid = static_cast<uint16_t>(gettid());
    self.known = true;
  }
  return self.tid;
}

// Writes "[name]: " with the thread's current name (empty when it cannot be
// had) and returns its length.
size_t PutThreadNamePrefix(char* text) {
  char name[kThreadNameSize] = {};
  if (prctl(PR_GET_NAME, name) != 0) name[0] = '\0';
  name[kThreadNameSize - 1] = '\0';
  const size_t nameLength = strlen(name);
  text[0] = '[';
  memcpy(text + 1, name, nameLength);
  memcpy(text + 1 + nameLength, "]: ", 3);
  return nameLength + 4;
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
size_t FormatText(char* text, const char* format, va_list args) {
  size_t length = 0;
  uint32_t flags = g_area != nullptr ? LoadWord(g_area->flags) : 0;
  if (flags & LOG_FLAG_THREAD_NAME) length = PutThreadNamePrefix(text);
  return length + FormatRecordText(text + length, wire::kTextBufferSize - length, format, args);
}

// Sends one record on the link; false when the link is down.
bool SendRecord(int logClass, int level, const char* format, va_list args) {
  using namespace wire;
  LinkUse link;
  if (link.fd() < 0) return false;
  unsigned char message[kHeaderSize + kMaxRecordBody];
  unsigned char* body = message + kHeaderSize;
  size_t textLength = FormatText(reinterpret_cast<char*>(body + kRecordFixedSize), format, args);
  timeval now;
  gettimeofday(&now, nullptr);  // served by the vDSO, no system call

  size_t bodyLength = kRecordFixedSize + textLength + 1;
  PutHeader(message, bodyLength, kTypeRecord);
  PutU16(body + kRecordLevel, static_cast<uint16_t>(level));
  PutU16(body + kRecordClass, static_cast<uint16_t>(logClass));
  PutU16(body + kRecordThread, CurrentThreadId());
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
