// The logd link under the threads of real client programs, and the real logd
// under two of them beside clients it must drop.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <map>
#include <thread>
#include <vector>

#include "logd_process.h"

namespace {

namespace fs = std::filesystem;
using namespace logclient_test;

TEST(LinkRace, RacingInitsConnectOnce) {
  InChildWithHome([](const std::string& home) {
    // The first caller's connect waits for us while the others arrive.
    const int listener = ListenAt(SocketPathFor(home), true);
    std::vector<std::thread> callers;
    for (int i = 0; i < 4; ++i) callers.emplace_back([] { EXPECT_EQ(1, log_client_init()); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    close(accept(listener, nullptr, nullptr));  // our own
    close(accept(listener, nullptr, nullptr));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    fcntl(listener, F_SETFL, O_NONBLOCK);
    EXPECT_LT(accept(listener, nullptr, nullptr), 0) << "the library connected more than once";
    close(listener);  // a caller still connecting gives up
    for (std::thread& caller : callers) caller.join();
  });
}

// Opens files from the moment the link fails, as a busy program takes every
// number that comes free; each must hold only its own bytes.
void OpenFilesWhenTheLinkFails(const std::atomic<bool>& peerGone, const std::atomic<bool>& stop) {
  while (!peerGone) {
  }
  std::vector<int> files;
  while (!stop && files.size() < 512) {
    files.push_back(memfd_create("own", MFD_CLOEXEC));
    ASSERT_EQ(4, write(files.back(), "own\n", 4));
  }
  for (int fd : files) {
    char content[64];
    EXPECT_EQ(4, pread(fd, content, sizeof content, 0)) << "a record landed in a file";
    close(fd);
  }
}

TEST(LinkRace, RecordsNeverReachAFileOpenedWhileTheLinkFailsUnderWriters) {
  InChildWithHome([](const std::string& home) {
    signal(SIGPIPE, SIG_IGN);  // the writer must tolerate SIGPIPE itself
    // A round catches a close under writers only now and then; this many make it all but certain.
    for (int round = 0; round < 400 && !testing::Test::HasFailure(); ++round) {
      const int listener = ListenAt(SocketPathFor(home), false);
      ASSERT_EQ(1, log_client_init());
      const int peer = accept(listener, nullptr, nullptr);
      close(listener);
      std::atomic<bool> peerGone{false}, stop{false};
      std::vector<std::thread> threads;
      for (int w = 0; w < 4; ++w)
        threads.emplace_back([&] {
          // Huge doubles take the C library a while, with the number held.
          while (!stop) log_write_class(0, LOG_LEVEL_AOL, "test", "race", 0, "%.1f %.1f", 1e308, -1e308);
        });
      threads.emplace_back([&] { OpenFilesWhenTheLinkFails(peerGone, stop); });
      static char sink[1 << 16];
      for (int chunk = 0; chunk < 20 && read(peer, sink, sizeof sink) > 0; ++chunk) {
      }
      close(peer);  // as a killed logd would: the writers' next writes fail
      peerGone = true;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      stop = true;
      for (std::thread& thread : threads) thread.join();
      log_client_shutdown();
    }
  });
}

constexpr int kThreads = 4;
constexpr int kRecords = 5000;
constexpr int kLongEvery = 97;  // every so many records one near the size limit
const std::string kLongTail(8000, 'x');

// Each thread takes its own name after its first record.
[[noreturn]] void WriteRecords(char tag, const fs::path& home) {
  setenv("HOME", home.c_str(), 1);
  signal(SIGPIPE, SIG_IGN);
  prctl(PR_SET_NAME, "unnamed");
  log_client_init();
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([tag, t] {
      for (int n = 0; n < kRecords; ++n) {
        log_write_class(5, LOG_LEVEL_ERROR, "load", "test", n, "%c t%d n%d %s", tag, t, n,
                        n % kLongEvery == 0 ? kLongTail.c_str() : "");
        if (n == 0) pthread_setname_np(pthread_self(), (tag + std::string("-t") + std::to_string(t)).c_str());
      }
    });
  for (std::thread& thread : threads) thread.join();
  log_client_shutdown();
  _exit(0);
}

void TakeLine(const std::string& line, std::map<std::string, int>& next) {
  char level[16] = "", logClass[32] = "", prefix[16] = "", tag = 0;
  int thread = -1, number = -1, end = 0;
  ASSERT_EQ(6, sscanf(line.c_str(), "%*s %*s %15s %31s pid=%*d uid=%*d tid=%*d [%15[^]]]: %c t%d n%d%n", level, logClass, prefix, &tag,
                      &thread, &number, &end)) << line.substr(0, 100);
  EXPECT_EQ(std::string(level) + " " + logClass, "ERROR LOG_CONNECT");
  const std::string writer = tag + std::string("-t") + std::to_string(thread);
  ASSERT_EQ(prefix, number == 0 ? "unnamed" : writer) << "the thread name of the moment: " << line.substr(0, 100);
  ASSERT_EQ(number, next[writer]++) << "record lost, repeated or out of order: " << line.substr(0, 100);
  EXPECT_EQ(line.substr(static_cast<size_t>(end)), number % kLongEvery == 0 ? " " + kLongTail : " ");
}

// One sends an unknown message type, one hangs up mid-message.
void SendBadClients(const std::string& socketPath) {
  const int bad = ConnectTo(socketPath), halfway = ConnectTo(socketPath);
  const std::string garbage("\4\0\11\0oops", 8), half("\36\0\1\0cut off", 11);
  ASSERT_EQ(8, write(bad, garbage.data(), garbage.size()));
  ASSERT_EQ(11, write(halfway, half.data(), half.size()));
  close(halfway);
  char byte;
  EXPECT_EQ(0, read(bad, &byte, 1)) << "logd hangs up on the bad client";
  close(bad);
}

// Following the area's log path while clients write is proven end to end with logmgr.
TEST(LogdLoad, EveryRecordOfTwoProcessesArrivesWholeOnceAndBadClientsAreDropped) {
  if (log_system_wide_mode()) GTEST_SKIP() << kSystemWideHere;
  testsupport::TempDir home;
  LogdProcess logd(home.path(), {LOGD_PATH, "--rate-burst", "0"});
  ASSERT_TRUE(logd.listening());
  std::vector<pid_t> writers;
  for (char tag : {'A', 'B'})
    if (pid_t pid = fork(); pid == 0) WriteRecords(tag, home.path()); else writers.push_back(pid);
  SendBadClients(SocketPathFor(home.str()));
  for (pid_t writer : writers) EXPECT_EQ(testsupport::ExitCodeOf(writer, 300), 0);
  const std::vector<std::string> lines = logd.WaitForLines(2 * kThreads * kRecords);
  ASSERT_EQ(lines.size(), 2u * kThreads * kRecords) << logd.Errors();
  std::map<std::string, int> next;
  for (size_t i = 0; i < lines.size() && !testing::Test::HasFatalFailure(); ++i) TakeLine(lines[i], next);
  EXPECT_EQ(logd.Stop(), 0);
  EXPECT_NE(std::string::npos, logd.Errors().find("unknown message type 9")) << logd.Errors();
  EXPECT_NE(std::string::npos, logd.Errors().find("hung up in the middle of a message"));
}

}  // namespace
