// Threads of two processes writing through the library into one logd, while
// the log file path changes under them: logd's files must hold every record
// once, whole, in each writer's order.
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "logclient/logclient.h"
#include "logd_process.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

constexpr int kThreads = 4;
constexpr int kRecords = 20000;
constexpr int kLongEvery = 97;  // every so many records one near the size limit
const std::string kLongTail(8000, 'x');

// One writer process: kThreads named threads, each sending kRecords records.
[[noreturn]] void WriteRecords(char tag, const fs::path& home) {
  setenv("HOME", home.c_str(), 1);
  signal(SIGPIPE, SIG_IGN);
  log_client_init();
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([tag, t] {
      pthread_setname_np(pthread_self(), (std::string(1, tag) + "-t" + std::to_string(t)).c_str());
      for (int n = 0; n < kRecords; ++n)
        log_write_class(5, LOG_LEVEL_ERROR, "load", "test", n, "%c t%d n%d %s", tag, t, n,
                        n % kLongEvery == 0 ? kLongTail.c_str() : "");
    });
  for (std::thread& thread : threads) thread.join();
  log_client_shutdown();
  _exit(0);
}

// Checks one line and advances its writer's next expected record number.
void TakeLine(const std::string& line, std::map<std::string, int>& next) {
  const logclient_test::LogLine parsed = logclient_test::ParseLogLine(line);
  ASSERT_EQ(parsed.level + " " + parsed.logClass, "ERROR LOG_CONNECT") << line.substr(0, 100);
  char prefix[16] = "", tag = 0;
  int thread = -1, number = -1, consumed = 0;
  ASSERT_EQ(4, sscanf(parsed.text.c_str(), "[%15[^]]]: %c t%d n%d%n", prefix, &tag, &thread, &number, &consumed))
      << line.substr(0, 100);
  const std::string writer = std::string(1, tag) + "-t" + std::to_string(thread);
  ASSERT_EQ(prefix, writer) << "a thread name from another writer: " << line.substr(0, 100);
  ASSERT_EQ(number, next[writer]++) << "record lost, repeated or out of order: " << line.substr(0, 100);
  EXPECT_EQ(parsed.text.substr(static_cast<size_t>(consumed)), number % kLongEvery == 0 ? " " + kLongTail : " ");
}

TEST(LogdLoad, EveryRecordOfEightThreadsInTwoProcessesArrivesWholeOnceAcrossAPathChange) {
  testsupport::TempDir home;
  logclient_test::LogdProcess logd(home.path());
  ASSERT_TRUE(logd.listening());
  const fs::path first = logclient_test::DefaultLogFile(home.path()), second = home / "second.log";
  std::vector<pid_t> writers;
  for (char tag : {'A', 'B'})
    if (pid_t pid = fork(); pid == 0) WriteRecords(tag, home.path()); else writers.push_back(pid);

  constexpr size_t kTotal = 2 * kThreads * kRecords;
  // Mid-stream: a few percent of the lines are in, and the writers go on.
  auto firstSize = [&] {
    std::error_code noFileYet;
    const uintmax_t size = fs::file_size(first, noFileYet);
    return noFileYet ? 0 : size;
  };
  for (int ms = 0; ms < 10000 && firstSize() < (1u << 20); ++ms)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  // As the utility points the client's log into the issue folder.
  std::string pathField = second.string();
  logclient_test::WriteAreaBytes(home.path(), 244, pathField.append(256 - pathField.size(), '\0'));
  for (pid_t writer : writers) {
    int status = -1;
    waitpid(writer, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  std::vector<std::string> lines = logd.WaitForLines(0, first);
  const size_t before = lines.size();
  for (const std::string& line : logd.WaitForLines(kTotal - before, second)) lines.push_back(line);
  ASSERT_LT(before, kTotal) << "the path changed after the writers were done";
  ASSERT_EQ(lines.size(), kTotal) << logd.Errors();
  std::map<std::string, int> next;
  for (const std::string& line : lines) {
    TakeLine(line, next);
    if (testing::Test::HasFatalFailure()) return;
  }
  EXPECT_EQ(next.size(), 2u * kThreads);
  EXPECT_EQ(logd.Errors(), "");
}

}  // namespace
