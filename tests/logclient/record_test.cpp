// What the library sends to logd, read as raw bytes from a socket of the
// test's own, and what it gives the system log.
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/socket.h>

#include <syslog.h>

#include <chrono>
#include <climits>
#include <cstdarg>
#include <cstring>
#include <mutex>

#include "logclient/logclient.h"
#include "logd_process.h"
#include "support/fixtures.h"

// The system log of this program: "<priority> <text>", the first hundred, never the machine's.
std::vector<std::string> g_systemLog;

extern "C" {
void vsyslog(int priority, const char* format, va_list args) {
  static std::mutex lock;
  char text[512];
  vsnprintf(text, sizeof text, format, args);
  std::lock_guard<std::mutex> hold(lock);
  if (g_systemLog.size() < 100) g_systemLog.push_back(std::to_string(priority) + " " + text);
}
// The variadic entries, plain and as a fortified build of the library calls them.
#define FORWARD_TO_VSYSLOG(name, ...)                            \
  void name(int priority, __VA_ARGS__ const char* format, ...) { \
    va_list args;                                                \
    va_start(args, format);                                      \
    vsyslog(priority, format, args);                             \
    va_end(args);                                                \
  }
FORWARD_TO_VSYSLOG(syslog)
FORWARD_TO_VSYSLOG(__syslog_chk, int, )
void __vsyslog_chk(int priority, int, const char* format, va_list args) { vsyslog(priority, format, args); }
}

using logclient_test::InChildWithHome;
using Message = std::pair<uint16_t, std::string>;  // type, body

std::vector<Message> Received(int listener) {
  const int connection = accept(listener, nullptr, nullptr);
  std::string bytes(1 << 16, '\0');
  bytes.resize(std::max<ssize_t>(recv(connection, bytes.data(), bytes.size(), MSG_DONTWAIT), 0));
  std::vector<Message> messages;
  for (size_t at = 0; at + 4 <= bytes.size(); at += 4 + messages.back().second.size()) {
    uint16_t header[2];  // body length, type
    memcpy(header, &bytes[at], 4);
    messages.emplace_back(header[1], bytes.substr(at + 4, header[0]));
  }
  return messages;
}

// The writer formats the common conversions itself and must agree with printf.
#define FORMAT_CASES(WRITE)                                                                                   \
  WRITE("%d %i %u %ld %lld %lu %zu %zd", -42, INT_MIN, 4000000000u, LONG_MIN, LLONG_MIN, ULONG_MAX, size_t{7}, \
        ssize_t{-5});                                                                                         \
  WRITE("%x %X %lx %s %c 100%%", 0xbeefu, 0xbeefu, 0xdeadbeeful, "word", 'k');                                  \
  WRITE("%5d|%-4s|%.2f", 42, "ab", 2.5)

TEST(RecordLink, HelloThenEveryRecordThatPassesItsClassLevelInTheSharedLayout) {
  InChildWithHome([](const std::string& home) {
    const int listener = logclient_test::ListenAt(logclient_test::SocketPathFor(home));
    // The fine clock, as records carry it: time() may lag it by a tick.
    const auto now = [] { return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()); };
    const uint32_t before = now();
    program_invocation_short_name = const_cast<char*>("a_program_name_longer_than_the_field");
    prctl(PR_SET_NAME, "worker-7");
    log_client_init();
    log_write_class(12, LOG_LEVEL_FATAL, "test", "layout", 1, "tid %d", gettid() & 0xFFFF);
    log_clear_flags(LOG_FLAG_THREAD_NAME);
    log_write_class(3, LOG_LEVEL_AOL, "test", "cut", 0, "%s", std::string(9000, 'x').c_str());
#define WRITE(...) log_write_class(0, LOG_LEVEL_AOL, "test", "format", 0, __VA_ARGS__)
    FORMAT_CASES(WRITE);
    for (int own : {LOG_LEVEL_VERBOSE, LOG_LEVEL_ERROR, LOG_LEVEL_NONE}) {
      log_set_class_level(12, own);
      for (int level = 0; level <= 7; ++level) log_write_class(12, level, "test", "filter", 0, "%d:%d", own, level);
    }
    for (int level = 0; level <= 7; ++level) log_write(level, "test", "unclassed", 0, "u%d", level);
    log_write_class(0, LOG_LEVEL_AOL, "test", nullptr, 0, "no origin");
    const std::vector<Message> messages = Received(listener);
    std::vector<std::string> texts = {"[worker-7]: tid ", std::string(8191, 'x')};
    char text[256];
#define EXPECT_TEXT(...) texts.push_back((snprintf(text, sizeof text, __VA_ARGS__), text))
    FORMAT_CASES(EXPECT_TEXT);
    for (const char* passing : {"1:1", "1:2", "1:3", "1:4", "1:5", "1:6", "4:4", "4:5", "4:6", "7:6", "u1", "u2", "u3", "u4", "u5"}) texts.push_back(passing);
    ASSERT_EQ(messages.size(), texts.size() + 1);
    EXPECT_EQ(messages[0], Message(2, std::string(2, '\0') + "norvex-a_program_name_longer_th" + '\0'));
    const std::string& first = messages[1].second;
    EXPECT_EQ(first.substr(0, 4), std::string("\5\0\14\0", 4)) << "level 5, class 12";
    uint16_t tid;
    uint32_t seconds, micros;
    memcpy(&tid, &first[4], 2), memcpy(&seconds, &first[6], 4), memcpy(&micros, &first[10], 4);
    EXPECT_TRUE(seconds >= before && seconds <= now() && micros < 1000000u);
    texts[0] += std::to_string(tid);  // the low 16 bits of the thread id
    for (size_t i = 0; i < texts.size(); ++i)
      EXPECT_EQ(messages[i + 1], Message(1, messages[i + 1].second.substr(0, 14) + texts[i] + '\0'));
    EXPECT_EQ(messages.back().second.substr(2, 2), std::string(2, '\0')) << "unclassed records carry class 0";
  });
}

TEST(SystemLog, WithoutAreaOrLogdQueriesFailAndTheUnclassedAndAlwaysOnMessagesGoThere) {
  InChildWithHome([](const std::string& home) {
    testsupport::WriteFile(home + "/file", "");
    setenv("HOME", (home + "/file").c_str(), 1);  // no client folder can be made below a file
    EXPECT_EQ(log_client_init(), 1);
    uint32_t flags = 0;
    EXPECT_EQ((std::vector{log_set_class_level(5, 1), log_get_class_level(0), log_get_default_level(0),
                           log_get_class_parent(1), log_get_tuning_a(), log_set_flags(1), log_get_default_flags(&flags)}),
              (std::vector{0, -1, -1, -1, -1, 0, 0}));
    EXPECT_TRUE(!log_get_class_name(0) && !log_get_level_display_name(0) && !log_get_shared_path());
    for (int level = 1; level <= 6; ++level) log_write_class(5, level, "test", "c", 0, "c%d", level);
    for (int level = 1; level <= 6; ++level) log_write(level, "test", "u", 0, "u%d", level);
    EXPECT_EQ(g_systemLog, (std::vector<std::string>{"3 Failed to connect with logd.", "6 c6", "6 u1", "5 u2", "4 u3",
                                                     "3 u4", "1 u5"}));
  });
}

TEST(SystemLog, AfterTheAreaAloneInitReportsTheMissingLinkEachTimeAndShutdownUnmaps) {
  InChildWithHome([](const std::string&) {
    ASSERT_EQ(log_config_open(), 1);
    log_set_class_level(7, LOG_LEVEL_FATAL);
    EXPECT_EQ(log_client_init() + log_client_init(), 0);
    EXPECT_EQ(g_systemLog, std::vector<std::string>(2, "3 Failed to connect with logd."));
    log_client_shutdown();
    EXPECT_EQ(log_get_class_level(7), -1);
    ASSERT_EQ(log_config_open(), 1);
    EXPECT_EQ(log_get_class_level(7), LOG_LEVEL_FATAL) << "an area with its magic is taken as it stands";
  });
}
