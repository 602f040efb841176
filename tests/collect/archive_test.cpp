// The flat gzip tar archive and the last-saved time text.
#include <algorithm>
#include <cstdio>
#include <sstream>

#include "collect/archive.h"
#include "engine_fixture.h"
#include "support/files.h"

namespace collecttest {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

struct Member {
  char type;
  std::string name;
  bool operator<(const Member& other) const { return name < other.name || (name == other.name && type < other.type); }
  bool operator==(const Member& other) const = default;
};

// Members as "tar -tzvf" lists them: type letter and stored name.
std::vector<Member> ListMembers(const fs::path& archive) {
  std::istringstream listing(testsupport::RunAndCapture("tar -tzvf " + archive.string()));
  std::vector<Member> members;
  std::string line;
  while (std::getline(listing, line)) {
    const size_t lastBlank = line.rfind(' ');
    members.push_back({line.front(), line.substr(lastBlank + 1)});
  }
  std::sort(members.begin(), members.end());
  return members;
}

class ArchiveTest : public EngineTest {
 protected:
  fs::path Archive() const { return scratch_ / "out.tar.gz"; }
  fs::path Log(const std::string& rel) {
    const fs::path file = scratch_ / "logs" / rel;
    testsupport::WriteFile(file, "contents of " + rel + "\n");
    return file;
  }
};

TEST_F(ArchiveTest, ExistingFilesAreStoredFlatByBaseName) {
  App::FileList list{Log("a/ORBClient.log"), scratch_ / "missing.log", Log("b/c/kvlog.latest")};
  CaptureStderr();
  EXPECT_EQ(app_->CreateArchive(list, Archive().string()), 0);
  EXPECT_EQ(GetCapturedStderr(), "");
  EXPECT_EQ(ListMembers(Archive()), (std::vector<Member>{{'-', "ORBClient.log"}, {'-', "kvlog.latest"}}));
}

TEST_F(ArchiveTest, LinksAreFollowedAndEqualNamesBothKept) {
  const fs::path target = Log("real/target.log");
  const fs::path link = scratch_ / "logs" / "linked.log";
  fs::create_symlink(target, link);
  App::FileList list{link, Log("one/same.log"), Log("two/same.log")};
  EXPECT_EQ(app_->CreateArchive(list, Archive().string()), 0);
  EXPECT_EQ(ListMembers(Archive()), (std::vector<Member>{{'-', "linked.log"}, {'-', "same.log"}, {'-', "same.log"}}));
}

TEST_F(ArchiveTest, NothingToArchiveRunsNothing) {
  EXPECT_EQ(app_->CreateArchive({}, Archive().string()), 1);
  EXPECT_EQ(app_->CreateArchive({scratch_ / "gone.log", scratch_ / "kvlog*"}, Archive().string()), 1);
  EXPECT_FALSE(fs::exists(Archive()));
}

TEST_F(ArchiveTest, ABlankInAPathBreaksTheCommand) {
  CaptureStderr();
  EXPECT_EQ(app_->CreateArchive({Log("with blank.log")}, Archive().string()), 2);
  EXPECT_NE(GetCapturedStderr().find("Child process terminated with exit status: 2\n"), std::string::npos);
}

TEST_F(ArchiveTest, AFailingTarGivesTwo) {
  UseToolsOnly({"sh"});
  testsupport::WriteScript(Bin() / "tar", "exit 3");
  CaptureStderr();
  EXPECT_EQ(app_->CreateArchive({Log("x.log")}, Archive().string()), 2);
  EXPECT_EQ(GetCapturedStderr(), "Child process terminated with exit status: 3\n");
}

// Sets TZ for the scope and makes the C library read it again both ways.
class ScopedZone {
 public:
  explicit ScopedZone(const char* zone) {
    env_.emplace("TZ", zone);
    tzset();
  }
  ~ScopedZone() {
    env_.reset();
    tzset();
  }

 private:
  std::optional<testsupport::ScopedEnv> env_;
};

TEST(TimestampTest, AfternoonReadsOnTheTwelveHourClockWithZone) {
  ScopedZone utc("UTC");
  const std::time_t when = 1714568709;  // 2024-05-01 13:05:09 UTC
  std::tm local{};
  localtime_r(&when, &local);
  EXPECT_EQ(FormatTimestamp(local), "Wednesday, May 01, 2024, 01:05:09 UTC (+0000)");
}

TEST_F(ArchiveTest, TimestampOfNowIsInTheLocalZone) {
  ScopedZone zone("EST5");
  const std::string text = app_->TimestampText();
  // "Weekday, Month dd, yyyy, hh:mm:ss EST (-0500)" on the 12-hour clock.
  const size_t clock = text.rfind(", ");
  ASSERT_NE(clock, std::string::npos) << text;
  int hour = -1, minute = -1, second = -1;
  char zone_text[8] = {};
  ASSERT_EQ(std::sscanf(text.c_str() + clock + 2, "%2d:%2d:%2d %7s", &hour, &minute, &second, zone_text), 4) << text;
  EXPECT_TRUE(hour >= 1 && hour <= 12) << text;
  EXPECT_STREQ(zone_text, "EST");
  EXPECT_EQ(text.substr(text.size() - 7), "(-0500)") << text;
}

}  // namespace
}  // namespace collecttest
