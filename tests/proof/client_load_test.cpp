// Many writers into one logd at once, and a logd that dies mid-stream.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <map>
#include <string>
#include <utility>

#include "logclient/logd_peer_process.h"
#include "proof_process.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace prooftest {
namespace {

namespace fs = std::filesystem;
using logclient_test::LogdPeerProcess;
using logclient_test::SocketPathFor;

constexpr int kThreads = 4;
constexpr int kRecords = 50000;
constexpr size_t kLongText = 8000;
constexpr int kLongEvery = 997;

struct Writer {
  int next = 0;        // the record number expected next
  int threadId = -1;   // the tid field its records carry
  int longRecords = 0;
};

// Checks one decoded record line of the peer and advances its writer.
void TakeRecord(const std::string& line, std::map<std::pair<char, int>, Writer>& writers) {
  int level = 0, cls = 0, tid = 0;
  ASSERT_EQ(sscanf(line.c_str(), "record level=%d class=%d tid=%d", &level, &cls, &tid), 3) << line;
  EXPECT_EQ(level, 4);
  EXPECT_EQ(cls, 5);
  const size_t text = line.find(" text=[");
  ASSERT_NE(text, std::string::npos) << line;
  char tag = 0, prefixTag = 0;
  int thread = -1, prefixThread = -1, number = -1, consumed = 0;
  ASSERT_EQ(sscanf(line.c_str() + text, " text=[%c-t%d]: %c t%d n%d%n", &prefixTag, &prefixThread, &tag,
                   &thread, &number, &consumed),
            5)
      << line;
  EXPECT_EQ(prefixTag, tag);
  EXPECT_EQ(prefixThread, thread);
  Writer& writer = writers[{tag, thread}];
  ASSERT_EQ(number, writer.next) << "record lost, repeated or out of order: " << line.substr(0, 120);
  ++writer.next;
  if (writer.threadId < 0) writer.threadId = tid;
  EXPECT_EQ(tid, writer.threadId);
  const std::string tail = line.substr(text + static_cast<size_t>(consumed));
  if (number % kLongEvery == 0) {
    EXPECT_EQ(tail, " " + std::string(kLongText, 'x'));
    ++writer.longRecords;
  } else {
    EXPECT_EQ(tail, " ");
  }
}

TEST(ClientLoad, EveryRecordOfEightThreadsInTwoProcessesArrivesWholeOnce) {
  testsupport::TempDir dir;
  const fs::path home = dir / "home";
  LogdPeerProcess peer(SocketPathFor(home.string()), dir / "peer");
  ASSERT_TRUE(peer.listening());

  const std::vector<std::string> args = {std::to_string(kThreads), std::to_string(kRecords)};
  pid_t first = StartProofClient({"load", "A", args[0], args[1]}, home, dir / "a.out");
  pid_t second = StartProofClient({"load", "B", args[0], args[1]}, home, dir / "b.out");
  for (pid_t writer : {first, second}) {
    std::optional<int> status = WaitWithin(writer, std::chrono::seconds(180));
    ASSERT_TRUE(status.has_value()) << "a writer blocked";
    EXPECT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 0) << testsupport::ReadFile(dir / "a.out");
  }

  // Two hellos, every record, and each process's closing record.
  const size_t expected = 2 + 2 * kThreads * kRecords + 2;
  const std::vector<std::string> lines = peer.WaitForLines(expected);
  ASSERT_EQ(lines.size(), expected);
  EXPECT_EQ(peer.Errors(), "") << "the peer dropped a client on a malformed message";

  std::map<std::pair<char, int>, Writer> writers;
  int hellos = 0;
  std::map<char, bool> done;
  for (const std::string& line : lines) {
    if (line.rfind("hello ", 0) == 0) {
      ++hellos;
      EXPECT_EQ(line, "hello norvex-proof_client client=0");
    } else if (line.size() > 5 && line.compare(line.size() - 5, 5, " done") == 0) {
      done[line[line.size() - 6]] = true;
    } else {
      TakeRecord(line, writers);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
  EXPECT_EQ(hellos, 2);
  EXPECT_TRUE(done['A'] && done['B']);
  ASSERT_EQ(writers.size(), 2u * kThreads);
  for (const auto& [key, writer] : writers) {
    EXPECT_EQ(writer.next, kRecords) << key.first << " thread " << key.second;
    EXPECT_EQ(writer.longRecords, (kRecords + kLongEvery - 1) / kLongEvery);
  }
}

TEST(ClientLoad, WriterOutlivesAKilledPeerAndFallsBackToTheSystemLog) {
  testsupport::TempDir dir;
  const fs::path home = dir / "home";
  const fs::path marker = dir / "peer-killed";
  const std::string socket = SocketPathFor(home.string());
  auto peer = std::make_unique<LogdPeerProcess>(socket, dir / "peer");
  ASSERT_TRUE(peer->listening());

  constexpr int kAfter = 200;
  pid_t writer = StartProofClient({"until-killed", "A", marker.string(), std::to_string(kAfter)}, home,
                                  dir / "writer.out");
  // Mid-stream: the writer is busy sending when its peer goes.
  ASSERT_GE(peer->WaitForLines(2000).size(), 2000u);
  peer->Stop();
  // A new logd on the same socket must not get anything: there is no reconnection.
  LogdPeerProcess successor(socket, dir / "successor");
  ASSERT_TRUE(successor.listening());
  testsupport::WriteFile(marker, "");

  std::optional<int> status = WaitWithin(writer, std::chrono::seconds(60));
  ASSERT_TRUE(status.has_value()) << "the writer blocked after its peer died";
  EXPECT_FALSE(WIFSIGNALED(*status)) << "killed by signal " << WTERMSIG(*status);
  ASSERT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 0) << testsupport::ReadFile(dir / "writer.out");
  EXPECT_EQ(testsupport::ReadFile(dir / "writer.out"), "syslog after=" + std::to_string(kAfter) + "\n");
  EXPECT_TRUE(successor.WaitForLines(0).empty());
}

}  // namespace
}  // namespace prooftest
