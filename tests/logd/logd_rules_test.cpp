// The real logd in per-user mode against what any local user can do to it:
// steer its file through the area, break the area, stall, flood, forge, move
// its file and stop it while records are queued.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "logclient/logd_process.h"

namespace {

namespace fs = std::filesystem;
using namespace logclient_test;
using testsupport::ReadFile;

void SendOn(int fd, const std::string& bytes) { ASSERT_EQ(write(fd, bytes.data(), bytes.size()), ssize_t(bytes.size())); }

size_t Count(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

// CPU time the process has used, in clock ticks.
long CpuTicks(pid_t pid) {
  std::istringstream stat(ReadFile("/proc/" + std::to_string(pid) + "/stat"));
  std::string field;
  long ticks = 0;
  for (int i = 1; i <= 15 && stat >> field; ++i) ticks += i >= 14 ? std::stol(field) : 0;
  return ticks;
}

class LogdRules : public testing::Test {
 protected:
  void SetUp() override {
    if (log_system_wide_mode()) GTEST_SKIP() << kSystemWideHere;
  }
  void Send(const std::string& text) {
    const int fd = ConnectTo(SocketPathFor(home_.str()));
    SendOn(fd, RecordBytes(text));
    close(fd);
  }
  std::string Area() const { return home_.str() + "//.ORBClient/.nvxndclogconf"; }
  fs::path Default() const { return DefaultLogFile(home_.path()); }

  testsupport::TempDir home_;
  const fs::path logs_ = home_ / ".ORBClient/logs";
};

TEST_F(LogdRules, WritesOnlyRegularFilesInItsFoldersAndTheDefaultFileMeanwhile) {
  LogdProcess logd(home_.path());
  ASSERT_TRUE(logd.listening());
  testsupport::WriteFile(home_ / "victim", "precious\n");
  fs::create_directory(home_ / "elsewhere");
  fs::create_symlink(home_ / "victim", logs_ / "link.log");
  fs::create_directory_symlink(home_ / "elsewhere", logs_ / "issuereproduce");
  ASSERT_EQ(mkfifo((logs_ / "fifo.log").c_str(), 0644), 0);
  for (const fs::path& path : {home_ / "outside.log", logs_ / "link.log", logs_ / "issuereproduce/ORBClient.log",
                               logs_ / "fifo.log", logs_ / "../logs/dots.log"}) {
    WriteArea(Area(), path.string());
    Send("to " + path.string());
    Send("again to " + path.string());
    EXPECT_TRUE(Holds(Default(), "again to " + path.string())) << logd.Errors();
    EXPECT_EQ(Count(logd.Errors(), "refusing the log file \"" + path.string() + "\""), 1u) << logd.Errors();
  }
  EXPECT_EQ(ReadFile(home_ / "victim"), "precious\n");
  EXPECT_FALSE(fs::exists(home_ / "outside.log"));
  EXPECT_TRUE(fs::is_empty(home_ / "elsewhere"));
  fs::remove(logs_ / "issuereproduce");
  fs::create_directory(logs_ / "issuereproduce");
  WriteArea(Area(), (logs_ / "issuereproduce/ORBClient.log").string());
  Send("into the issue folder");
  EXPECT_TRUE(Holds(logs_ / "issuereproduce/ORBClient.log", "into the issue folder")) << logd.Errors();
}

TEST_F(LogdRules, ACorruptOrShrunkAreaFallsBackToTheDefaults) {
  LogdProcess logd(home_.path());
  ASSERT_TRUE(logd.listening());
  WriteArea(Area(), "relative/ORBClient.log", 500, -3, 1000000);  // held 200 ms, not 1000 s
  Send("corrupt area");
  EXPECT_TRUE(Holds(Default(), "corrupt area")) << logd.Errors();
  ASSERT_EQ(truncate(Area().c_str(), 0), 0);
  Send("shrunk area");
  EXPECT_TRUE(Holds(Default(), "shrunk area")) << logd.Errors();
  EXPECT_EQ(logd.Stop(), 0);
}

TEST_F(LogdRules, ClientsThatStallInARecordOrFallSilentAreDropped) {
  LogdProcess logd(home_.path(), {LOGD_PATH, "--partial-timeout", "1", "--idle-timeout", "3"});
  ASSERT_TRUE(logd.listening());
  const int stalled = ConnectTo(SocketPathFor(home_.str())), silent = ConnectTo(SocketPathFor(home_.str()));
  const timeval beforeIdle{2, 500000};  // the stall, not the silence, must drop it
  setsockopt(stalled, SOL_SOCKET, SO_RCVTIMEO, &beforeIdle, sizeof beforeIdle);
  SendOn(stalled, RecordBytes("never finished").substr(0, 9));
  char byte;
  EXPECT_EQ(read(stalled, &byte, 1), 0) << "still served after its partial timeout";
  EXPECT_EQ(read(silent, &byte, 1), 0) << "still served after its idle timeout";
  EXPECT_NE(logd.Errors().find("held a partial record for 1 s"), std::string::npos) << logd.Errors();
  EXPECT_NE(logd.Errors().find("sent nothing for 3 s"), std::string::npos);
}

TEST_F(LogdRules, TheClientLimitHasAFloorStaysBelowTheDescriptorsAndRunningOutDoesNotSpin) {
  std::vector<int> clients;
  {
    LogdProcess logd(home_.path());
    ASSERT_TRUE(logd.listening());
    WriteArea(Area(), "", 2, 1);
    for (int i = 0; i < 12; ++i) clients.push_back(ConnectTo(SocketPathFor(home_.str())));
    for (int i = 0; i < 12; ++i) SendOn(clients[i], RecordBytes("client " + std::to_string(i)));
    EXPECT_EQ(logd.WaitForLines(12).size(), 12u) << logd.Errors();
  }
#ifdef __SANITIZE_ADDRESS__
  constexpr int kFewest = 6;  // the sanitizer runtime needs one more descriptor to start
#else
  constexpr int kFewest = 5;  // one client, then accept runs out
#endif
  for (int limit : {kFewest, 24}) {
    LogdProcess logd(home_.path(), {"prlimit", "--nofile=" + std::to_string(limit), LOGD_PATH});
    ASSERT_TRUE(logd.listening());
    WriteArea(Area(), "", 2, 0);
    for (int i = 0; i < 12; ++i) clients.push_back(ConnectTo(SocketPathFor(home_.str())));
    const std::string said = limit == 24 ? "away: 8 clients are served" : limit == 5 ? "cannot take a client" : "away: 1 ";
    EXPECT_TRUE(Holds(home_ / "logd.err", said)) << logd.Errors();
    const long before = CpuTicks(logd.pid());
    std::this_thread::sleep_for(std::chrono::seconds(1));
    EXPECT_LT(CpuTicks(logd.pid()) - before, sysconf(_SC_CLK_TCK) / 5) << "spins with " << limit << " descriptors";
  }
  for (int fd : clients) close(fd);
}

TEST_F(LogdRules, LinesNameTheSenderByItsCredentialsAndAFloodIsCutToTheBurst) {
  LogdProcess logd(home_.path(), {LOGD_PATH, "--rate-burst", "5", "--rate-interval", "1"});
  ASSERT_TRUE(logd.listening());
  const int fd = ConnectTo(SocketPathFor(home_.str()));
  for (int i = 0; i < 20; ++i) SendOn(fd, RecordBytes("flood " + std::to_string(i), 4242, 86400));
  std::this_thread::sleep_for(std::chrono::milliseconds(1200));
  SendOn(fd, RecordBytes("after the window"));
  const std::vector<std::string> lines = logd.WaitForLines(7);
  ASSERT_EQ(lines.size(), 7u) << logd.Errors();
  const std::string sender = "pid=" + std::to_string(getpid()) + " uid=" + std::to_string(getuid());
  EXPECT_NE(lines[0].find(" AOL ALL " + sender + " tid=4242 flood 0"), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].substr(0, 4), "1970") << "the time the record claims";
  EXPECT_NE(lines[4].find("flood 4"), std::string::npos);
  EXPECT_NE(lines[5].find(" logd: suppressed 15 records of " + sender), std::string::npos) << lines[5];
  EXPECT_NE(lines[6].find("after the window"), std::string::npos);
  close(fd);
}

TEST_F(LogdRules, ItsFileIsReopenedWhenMovedOrOnHangupAndRotatedAtItsCap) {
  LogdProcess logd(home_.path(), {LOGD_PATH, "--max-size", "1000", "--keep", "2"});
  ASSERT_TRUE(logd.listening());
  WriteArea(Area(), "");
  Send("first");
  ASSERT_TRUE(Holds(Default(), "first"));
  fs::rename(Default(), Default().string() + ".moved");
  Send("after the rename");
  EXPECT_TRUE(Holds(Default(), "after the rename"));
  fs::remove(Default());
  Send("after the removal");
  EXPECT_TRUE(Holds(Default(), "after the removal"));
  kill(logd.pid(), SIGHUP);
  Send("after the hangup");
  EXPECT_TRUE(Holds(Default(), "after the hangup"));
  for (int i = 0; i < 40; ++i) Send(std::string(40, 'r') + std::to_string(i));
  EXPECT_TRUE(Holds(Default(), std::string(40, 'r') + "39"));
  for (const char* suffix : {"", ".1", ".2"}) {
    const std::string text = ReadFile(Default().string() + suffix);
    EXPECT_TRUE(!text.empty() && text.size() <= 1000 && text.back() == '\n') << suffix << ": " << text.size();
  }
  EXPECT_FALSE(fs::exists(Default().string() + ".3"));
  EXPECT_EQ(ReadFile(Default().string() + ".moved").find("after"), std::string::npos);
}

TEST_F(LogdRules, AStopWritesEveryRecordSentBeforeItThenRemovesTheSocket) {
  LogdProcess logd(home_.path(), {LOGD_PATH, "--rate-burst", "0"});
  ASSERT_TRUE(logd.listening());
  WriteArea(Area(), "", 0);  // no drain time: what was sent before the stop must not need one
  const int early = ConnectTo(SocketPathFor(home_.str()));
  kill(logd.pid(), SIGSTOP);
  for (int i = 0; i < 100; ++i) SendOn(early, RecordBytes("queued " + std::to_string(i)));
  std::vector<int> late;  // logd takes one connection a round: these wait in the backlog
  for (int i = 0; i < 3; ++i) {
    late.push_back(ConnectTo(SocketPathFor(home_.str())));
    SendOn(late.back(), RecordBytes("from the backlog " + std::to_string(i)));
  }
  kill(logd.pid(), SIGTERM);
  kill(logd.pid(), SIGCONT);
  EXPECT_EQ(logd.Stop(), 0);
  const std::string text = ReadFile(Default());
  for (int i = 0; i < 100; ++i) ASSERT_NE(text.find("queued " + std::to_string(i) + "\n"), std::string::npos) << i;
  for (int i = 0; i < 3; ++i) EXPECT_NE(text.find("from the backlog " + std::to_string(i)), std::string::npos) << i;
  EXPECT_FALSE(fs::exists(SocketPathFor(home_.str())));
  close(early);
  for (int fd : late) close(fd);
}

}  // namespace
