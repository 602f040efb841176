// The logd stream decoder over hand-built bytes, and logd's handling of
// clients that send garbage or hang up mid-message.
#include "tools/logd/decoder.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "logd_process.h"
#include "support/temp_dir.h"

namespace {

using logd::DecodeMessage;
using logd::DecodeStatus;

std::string U16(uint16_t value) { return std::string(reinterpret_cast<char*>(&value), 2); }
std::string U32(uint32_t value) { return std::string(reinterpret_cast<char*>(&value), 4); }

std::string Hello(const std::string& identity) {
  return U16(static_cast<uint16_t>(identity.size() + 3)) + U16(2) + U16(0) + identity + '\0';
}

std::string Record(uint16_t level, uint16_t logClass, const std::string& text) {
  std::string body = U16(level) + U16(logClass) + U16(4321) + U32(1700000000) + U32(42) + text + '\0';
  return U16(static_cast<uint16_t>(body.size())) + U16(1) + body;
}

logd::Decoded Decode(const std::string& bytes) {
  return DecodeMessage(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

TEST(LogdDecoder, RejectsInconsistentMessages) {
  std::string unterminated = Record(3, 1, "abc"), innerNul = Record(3, 1, "abc");
  unterminated.back() = 'x';
  innerNul[4 + 14 + 1] = '\0';
  for (const std::string& bytes : {
           U16(5) + U16(3) + std::string(5, 'a'),    // unknown type
           U16(10) + U16(1) + std::string(10, 'a'),  // record shorter than its fixed fields
           U16(9000) + U16(1),                       // record longer than any text allows
           U16(300) + U16(2) + std::string(300, 'a'), unterminated, innerNul, Record(0, 1, "level 0"),
           Record(7, 1, "level 7")}) {
    logd::Decoded result = Decode(bytes);
    EXPECT_EQ(DecodeStatus::kMalformed, result.status) << result.problem;
    EXPECT_FALSE(result.problem.empty());
    EXPECT_EQ(0u, result.consumed);
  }
}

int ConnectTo(const std::string& path) {
  int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{AF_UNIX, {}};
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 ? fd : -1;
}

TEST(Logd, DropsBadClientsAndServesTheOthers) {
  testsupport::TempDir home;
  logclient_test::LogdProcess logd(home.path());
  ASSERT_TRUE(logd.listening());
  logclient_test::WriteAreaBytes(home.path(), 508, U32(3));  // at most three clients at once
  const std::string socketPath = logclient_test::SocketPathFor(home.str());
  int good = ConnectTo(socketPath), bad = ConnectTo(socketPath), halfway = ConnectTo(socketPath);
  int tooMany = ConnectTo(socketPath);
  ASSERT_TRUE(good >= 0 && bad >= 0 && halfway >= 0 && tooMany >= 0);
  std::string garbage = U16(4) + U16(9) + "oops", half = Record(2, 5, "cut off").substr(0, 12);
  char byte;
  EXPECT_EQ(0, read(tooMany, &byte, 1)) << "logd turns the fourth client away";
  ASSERT_EQ(static_cast<ssize_t>(garbage.size()), write(bad, garbage.data(), garbage.size()));
  EXPECT_EQ(0, read(bad, &byte, 1)) << "logd hangs up on the bad client";
  ASSERT_EQ(12, write(halfway, half.data(), half.size()));
  close(halfway);
  // A good client's message split over two writes still comes out whole.
  std::string stream = Hello("norvex-good") + Record(2, 5, "fine\nand well");
  ASSERT_EQ(7, write(good, stream.data(), 7));
  ASSERT_EQ(static_cast<ssize_t>(stream.size() - 7), write(good, stream.data() + 7, stream.size() - 7));
  auto lines = logd.WaitForLines(1);
  for (int fd : {good, bad, tooMany}) close(fd);
  ASSERT_EQ(1u, lines.size());
  EXPECT_NE(std::string::npos, lines[0].find(" INFO LOG_CONNECT 4321 fine\\nand well")) << lines[0];
  EXPECT_EQ(std::vector<std::string>{"hello norvex-good client=0"}, logd.WaitForHellos(1));
  EXPECT_NE(std::string::npos, logd.Errors().find("unknown message type 9"));
  EXPECT_NE(std::string::npos, logd.Errors().find("hung up in the middle of a message")) << logd.Errors();

  int status = logd.Stop();
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_FALSE(std::filesystem::exists(socketPath)) << "the socket is removed on SIGTERM";
}

}  // namespace
