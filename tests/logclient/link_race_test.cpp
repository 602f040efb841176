// The logd link under the threads of a real client program: callers racing
// into init, renamed threads, and a link that fails under writers in flight.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <deque>
#include <string>
#include <thread>
#include <vector>

#include "fake_syslog.h"
#include "logclient/logclient.h"
#include "logd_process.h"
#include "support/forked.h"
#include "support/temp_dir.h"

namespace {

using logclient_test::SocketPathFor;

// The listening end of the link, as logd makes it. With holdConnects one
// connection of our own fills the backlog: the next connect waits until we accept.
int ListenAt(const std::string& path, bool holdConnects) {
  sockaddr_un address{AF_UNIX, {}};
  strcpy(address.sun_path, path.c_str());
  const auto* raw = reinterpret_cast<const sockaddr*>(&address);
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  unlink(path.c_str());
  bind(listener, raw, sizeof address);
  listen(listener, 0);
  if (holdConnects) connect(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), raw, sizeof address);
  return listener;
}

TEST(LinkRace, RacingInitsConnectOnceAndRecordsCarryTheCurrentThreadName) {
  testsupport::TempDir home;
  std::filesystem::create_directories(home / ".ORBClient");
  EXPECT_EQ(0, testsupport::RunForked([&] {
    setenv("HOME", home.c_str(), 1);
    // The first caller's connect waits for us while the others arrive.
    const int listener = ListenAt(SocketPathFor(home.str()), true);
    std::vector<std::thread> callers;
    for (int i = 0; i < 4; ++i) callers.emplace_back([] { EXPECT_EQ(1, log_client_init()); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    close(accept(listener, nullptr, nullptr));  // our own
    const int link = accept(listener, nullptr, nullptr);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    fcntl(listener, F_SETFL, O_NONBLOCK);
    EXPECT_LT(accept(listener, nullptr, nullptr), 0) << "the library connected more than once";
    close(listener);  // a caller still connecting gives up
    for (std::thread& caller : callers) caller.join();

    prctl(PR_SET_NAME, "before");
    log_write_class(0, LOG_LEVEL_AOL, "test", "name", 0, "first");
    prctl(PR_SET_NAME, "after");
    log_write_class(0, LOG_LEVEL_AOL, "test", "name", 0, "second");
    std::string bytes(4096, '\0');
    bytes.resize(std::max<ssize_t>(0, recv(link, bytes.data(), bytes.size(), MSG_DONTWAIT)));
    const size_t first = bytes.find("[before]: first");
    EXPECT_NE(std::string::npos, first);
    EXPECT_NE(std::string::npos, bytes.find("[after]: second", first));
  }));
}

// Opens and fills files from the moment the link fails, as a busy program
// takes every number that comes free; each must hold only its own bytes.
void OpenFilesWhenTheLinkFails(const std::atomic<bool>& peerGone, const std::atomic<bool>& stop) {
  while (!peerGone) {
  }
  std::deque<std::pair<int, std::string>> files;
  for (int n = 0; !stop || !files.empty(); ++n) {
    if (!stop) {
      std::string own = "own bytes of file " + std::to_string(n) + "\n";
      const int fd = memfd_create("own", MFD_CLOEXEC);
      ASSERT_EQ(static_cast<ssize_t>(own.size()), write(fd, own.data(), own.size()));
      files.emplace_back(fd, std::move(own));
    }
    if (stop || files.size() > 64) {
      std::string content(128, '\0');
      content.resize(std::max<ssize_t>(0, pread(files.front().first, content.data(), content.size(), 0)));
      EXPECT_EQ(files.front().second, content) << "a record landed in a file";
      close(files.front().first);
      files.pop_front();
    }
  }
}

TEST(LinkRace, RecordsNeverReachAFileOpenedWhileTheLinkFailsUnderWriters) {
  testsupport::TempDir home;
  std::filesystem::create_directories(home / ".ORBClient");
  EXPECT_EQ(0, testsupport::RunForked([&] {
    setenv("HOME", home.c_str(), 1);
    signal(SIGPIPE, SIG_IGN);  // the writer must tolerate SIGPIPE itself
    for (int round = 0; round < 60 && !testing::Test::HasFailure(); ++round) {
      const int listener = ListenAt(SocketPathFor(home.str()), false);
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
      logclient_test::SystemLogCalls().clear();
    }
  }));
}

}  // namespace
