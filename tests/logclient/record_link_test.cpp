// The logd link and record writer, observed from the receiving end: raw
// bytes on a socket of the test's own, and the lines logd writes.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "fake_syslog.h"
#include "forked.h"
#include "logclient/logclient.h"
#include "logd_process.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace {

using logclient_test::LogdProcess;
using logclient_test::LogLine;
using logclient_test::ParseLogLine;
using logclient_test::SocketPathFor;
using testsupport::TempDir;

// The texts of all record lines, once at least count of them were written.
std::vector<std::string> RecordTexts(const LogdProcess& logd, size_t count) {
  std::vector<std::string> texts;
  for (const std::string& line : logd.WaitForLines(count)) texts.push_back(ParseLogLine(line).text);
  return texts;
}

class RecordLink : public ::testing::Test {
 protected:
  TempDir home;
  std::string socketPath = SocketPathFor(home.str());
};

TEST_F(RecordLink, HelloAndRecordBytesOnTheWire) {
  std::filesystem::create_directories(home / ".ORBClient");
  int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  strcpy(address.sun_path, socketPath.c_str());
  ASSERT_EQ(0, bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address));
  ASSERT_EQ(0, listen(listener, 4));
  uint32_t before = static_cast<uint32_t>(time(nullptr));
  std::string tidFile = (home / "tid").string();
  EXPECT_FORKED_PASS(home.str(), [&] {
    prctl(PR_SET_NAME, "rawtest");
    ASSERT_EQ(1, log_client_init());
    log_write_class(12, LOG_LEVEL_FATAL, "test", "raw", 1, "raw %d", 42);
    testsupport::WriteFile(tidFile, std::to_string(gettid()));
  });
  int connection = accept(listener, nullptr, nullptr);
  ASSERT_GE(connection, 0);
  std::string bytes;
  char chunk[512];
  for (ssize_t got; (got = read(connection, chunk, sizeof chunk)) > 0;) bytes.append(chunk, got);
  close(connection);
  close(listener);

  std::string hello = std::string("\x19\x00\x02\x00\x00\x00", 6) + "norvex-logclient_tests" + '\0';
  const std::string text = "[rawtest]: raw 42";
  ASSERT_EQ(hello.size() + 4 + 14 + text.size() + 1, bytes.size());
  EXPECT_EQ(hello, bytes.substr(0, hello.size()));
  std::string record = bytes.substr(hello.size());
  EXPECT_EQ(std::string("\x20\x00\x01\x00\x05\x00\x0c\x00", 8), record.substr(0, 8));
  struct [[gnu::packed]] {
    uint16_t tid;
    uint32_t seconds, micros;
  } stamp;
  memcpy(&stamp, record.data() + 8, sizeof stamp);
  EXPECT_EQ(static_cast<uint16_t>(std::stol(testsupport::ReadFile(tidFile))), stamp.tid);
  EXPECT_TRUE(stamp.seconds >= before && stamp.seconds <= time(nullptr) && stamp.micros < 1000000u);
  EXPECT_EQ(text + '\0', record.substr(18));
}

TEST_F(RecordLink, LevelFilterFollowsTheClassLevels) {
  LogdProcess logd(home.path());
  ASSERT_TRUE(logd.listening());
  EXPECT_FORKED_PASS(home.str(), [] {
    ASSERT_EQ(1, log_client_init());
    log_clear_flags(LOG_FLAG_THREAD_NAME);
    // ERROR, NONE, and no class resolving once the root inherits from nothing.
    for (auto [own, root] : {std::pair{LOG_LEVEL_ERROR, LOG_LEVEL_ERROR}, {LOG_LEVEL_NONE, LOG_LEVEL_ERROR},
                             {LOG_LEVEL_INHERIT, LOG_LEVEL_INHERIT}}) {
      log_set_class_level(12, own);
      log_set_class_level(0, root);
      for (int level = 0; level <= 7; ++level) log_write_class(12, level, "test", "lv", level, "L%d", level);
      log_write_class(0, LOG_LEVEL_AOL, "test", "mark", 0, "end");
    }
    // Unclassed messages are not filtered, but only take levels 1..5.
    log_set_class_level(0, LOG_LEVEL_NONE);
    for (int level = 0; level <= 7; ++level) log_write(level, "test", "plain", 0, "U%d", level);
    log_write(LOG_LEVEL_ERROR, nullptr, "plain", 0, "no origin");
    log_write_class(0, LOG_LEVEL_AOL, "test", nullptr, 0, "no origin");
    log_write_class(0, LOG_LEVEL_AOL, "test", "mark", 0, "end");
  });
  std::vector<std::string> expected = {"L4", "L5", "L6", "end", "L6", "end", "L6", "end",
                                       "U1", "U2", "U3", "U4", "U5", "end"};
  EXPECT_EQ(expected, RecordTexts(logd, expected.size())) << logd.Errors();
  auto lines = logd.WaitForLines(0);
  EXPECT_EQ("ALL", ParseLogLine(lines[lines.size() - 2]).logClass) << "unclassed records carry class 0";
}

// Logs the message in the writer, or formats it with printf into expected.
template <typename... Args>
void Both(std::vector<std::string>* expected, const char* format, Args... args) {
  char text[256];
  if (expected == nullptr) log_write_class(0, LOG_LEVEL_AOL, "test", "format", 0, format, args...);
  if (expected != nullptr && snprintf(text, sizeof text, format, args...) >= 0) expected->push_back(text);
}

void FormatCases(std::vector<std::string>* expected) {
  Both(expected, "plain %s, 100%% sure", "text");
  Both(expected, "%d %i %d %u", -42, 7, INT_MIN, 4000000000u);
  Both(expected, "%ld %lld %lu %llu", LONG_MIN, LLONG_MIN, ULONG_MAX, 0ull);
  Both(expected, "%zu %zd %x %X %lx", size_t{123}, ssize_t{-5}, 0xbeefu, 0xbeefu, 0xdeadbeeful);
  const char* volatile none = nullptr;  // kept from the compiler's format checks
  Both(expected, "%s|%s|%c%c", "word", none, 'o', 'k');
  Both(expected, "%5d|%-4s|%.2f|%03x|%p", 42, "ab", 2.5, 7u, static_cast<void*>(nullptr));
  Both(expected, "%s", "");
}

// The writer formats common conversions itself and must agree with printf.
TEST_F(RecordLink, TextsAreFormattedAsPrintfWouldWithTheThreadNameAndCut) {
  LogdProcess logd(home.path());
  ASSERT_TRUE(logd.listening());
  std::string longText(9000, 'x'), filler(8189, 'x');
  std::vector<std::string> expected = {"[worker-7]: named line", "[worker-7]: " + longText.substr(0, 8179)};
  FormatCases(&expected);
  for (const std::string& text : {std::string(8191, 'x'), std::string("bare\\nline"), filler + "12"})
    expected.push_back(text);
  EXPECT_FORKED_PASS(home.str(), [&] {
    prctl(PR_SET_NAME, "worker-7");
    ASSERT_EQ(1, log_client_init());
    log_write_class(3, LOG_LEVEL_AOL, "test", "prefix", 0, "named %s", "line");
    log_write_class(3, LOG_LEVEL_AOL, "test", "prefix", 0, "%s", longText.c_str());
    log_clear_flags(LOG_FLAG_THREAD_NAME);
    FormatCases(nullptr);
    log_write_class(3, LOG_LEVEL_AOL, "test", "prefix", 0, "%s", longText.c_str());
    log_write_class(3, LOG_LEVEL_AOL, "test", "prefix", 0, "bare\nline");
    log_write_class(0, LOG_LEVEL_AOL, "test", "format", 0, "%s%d", filler.c_str(), 12345);
  });
  EXPECT_EQ(expected, RecordTexts(logd, expected.size())) << logd.Errors();
}

TEST_F(RecordLink, LinkStaysDownAfterLogdGoes) {
  EXPECT_FORKED_PASS(home.str(), [&] {
    signal(SIGPIPE, SIG_IGN);  // the writer must tolerate SIGPIPE itself
    LogdProcess first(home.path(), "first");
    ASSERT_TRUE(first.listening());
    log_socket_path();  // the mode probe leaves a socket of its own open
    int socketsBefore = logclient_test::OpenSocketCount();
    ASSERT_EQ(1, log_client_init());
    EXPECT_EQ(socketsBefore + 1, logclient_test::OpenSocketCount());
    log_write_class(0, LOG_LEVEL_AOL, "test", "down", 0, "before");
    ASSERT_EQ(1u, first.WaitForLines(1).size());
    first.Stop();
    log_write_class(0, LOG_LEVEL_AOL, "test", "down", 0, "lost");
    EXPECT_EQ(socketsBefore, logclient_test::OpenSocketCount()) << "the socket is closed";

    LogdProcess second(home.path(), "second");
    ASSERT_TRUE(second.listening());
    auto& calls = logclient_test::SystemLogCalls();
    calls.clear();
    log_write_class(0, LOG_LEVEL_AOL, "test", "down", 0, "later");
    EXPECT_EQ(1, log_client_init());
    second.Stop();
    EXPECT_TRUE(second.WaitForHellos(0).empty()) << "no reconnection";
    EXPECT_EQ(std::vector<std::string>({"syslog 6 later", "syslog 3 Failed to connect with logd."}), calls);
  });
}

TEST(SystemLog, TakesMessagesWhileLogdIsAwayUnlessTheAreaWasOpenedFirst) {
  TempDir home;
  auto& calls = logclient_test::SystemLogCalls();
  EXPECT_FORKED_PASS(home.str(), [&] {
    calls.clear();
    EXPECT_EQ(1, log_client_init());
    EXPECT_EQ(1, log_client_init());
    for (int level = 1; level <= 6; ++level) log_write_class(5, level, "test", "c", 0, "classed %d", level);
    for (int level = 1; level <= 5; ++level) log_write(level, "test", "u", 0, "unclassed %d", level);
    log_client_shutdown();
    std::vector<std::string> expected = {
        "openlog norvex-logclient_tests 3 8", "setlogmask 127",
        "syslog 3 Failed to connect with logd.", "syslog 3 Failed to connect with logd.",
        // Class 5 inherits ERROR; an always-on message goes at LOG_INFO.
        "syslog 3 classed 4", "syslog 1 classed 5", "syslog 6 classed 6",
        "syslog 6 unclassed 1", "syslog 5 unclassed 2", "syslog 4 unclassed 3",
        "syslog 3 unclassed 4", "syslog 1 unclassed 5", "closelog"};
    EXPECT_EQ(expected, calls);
  });
  EXPECT_FORKED_PASS(home.str(), [&] {
    calls.clear();
    ASSERT_EQ(1, log_config_open());
    EXPECT_EQ(0, log_client_init());
    log_write_class(5, LOG_LEVEL_FATAL, "test", "classed", 0, "nowhere");
    log_write(LOG_LEVEL_FATAL, "test", "unclassed", 0, "nowhere");
    EXPECT_EQ(std::vector<std::string>({"syslog 3 Failed to connect with logd."}), calls);
  });
}

// The test process itself initialises the library. Its paths stay cached
// for the rest of the process, so this suite's file is linked last. A second
// program with a long name says hello with its identity cut to 31 characters.
TEST(RecordFromTestProcess, TestProcessItsForkedChildAndAnotherProgram) {
  TempDir home;
  testsupport::ScopedEnv scopedHome("HOME", home.str().c_str());
  LogdProcess logd(home.path());
  ASSERT_TRUE(logd.listening());
  ASSERT_EQ(1, log_client_init());
  log_write_class(7, LOG_LEVEL_FATAL, "test", "self", 0, "from the test process");
  std::string childTidFile = (home / "tid").string();
  EXPECT_FORKED_PASS("", [&] {
    log_write_class(7, LOG_LEVEL_FATAL, "test", "child", 0, "from a forked child");
    testsupport::WriteFile(childTidFile, std::to_string(gettid()));
  });
  ASSERT_EQ(2u, logd.WaitForLines(2).size()) << logd.Errors();
  std::filesystem::path longName = home / "probe_with_a_rather_long_program_name";
  std::filesystem::create_symlink(LOGCLIENT_PROBE_PATH, longName);
  testsupport::RunAndCapture(longName.string() + " write from-probe");
  auto lines = logd.WaitForLines(3);
  log_client_shutdown();
  ASSERT_EQ(3u, lines.size()) << logd.Errors();
  EXPECT_EQ(logd.WaitForHellos(2), (std::vector<std::string>{"hello norvex-logclient_tests client=0",
                                                             "hello norvex-probe_with_a_rather_long client=0"}));
  LogLine own = ParseLogLine(lines[0]), child = ParseLogLine(lines[1]), probe = ParseLogLine(lines[2]);
  char today[16];
  const time_t now = time(nullptr);
  strftime(today, sizeof today, "%Y-%m-%d", localtime(&now));
  EXPECT_EQ(today, own.date) << lines[0];
  EXPECT_EQ(15u, own.time.size()) << "time of day to the microsecond: " << lines[0];
  EXPECT_EQ(static_cast<uint16_t>(gettid()), own.tid);
  EXPECT_EQ(static_cast<uint16_t>(std::stol(testsupport::ReadFile(childTidFile))), child.tid);
  EXPECT_EQ("LOG_PROTOCOL", child.logClass);
  EXPECT_EQ("FATAL", child.level);
  EXPECT_EQ("[logclient_tests]: from a forked child", child.text);
  EXPECT_EQ("AOL", probe.level);
  EXPECT_EQ("[probe_with_a_ra]: from-probe", probe.text);
}

}  // namespace
