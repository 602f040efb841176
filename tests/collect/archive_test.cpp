// The flat gzip tar archive and the last-saved time text.
#include <algorithm>
#include <cstdio>
#include <sstream>

#include "collect/timestamp.h"
#include "engine_fixture.h"
#include "support/files.h"

namespace collecttest {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

// "type name" of every member as "tar -tzvf" lists it, sorted.
std::vector<std::string> ListMembers(const fs::path& archive) {
  std::istringstream listing(testsupport::RunAndCapture("tar -tzvf " + archive.string()));
  std::vector<std::string> members;
  for (std::string line; std::getline(listing, line);)
    members.push_back(line.front() + (" " + line.substr(line.rfind(' ') + 1)));
  std::sort(members.begin(), members.end());
  return members;
}

class ArchiveTest : public EngineTest {
 protected:
  std::string Archive() const { return (scratch_ / "out.tar.gz").string(); }
  fs::path Log(const std::string& rel) {
    testsupport::WriteFile(scratch_ / "logs" / rel, "contents of " + rel + "\n");
    return scratch_ / "logs" / rel;
  }
};

TEST_F(ArchiveTest, ExistingFilesAreStoredFlatByBaseNameWithLinksFollowed) {
  const fs::path link = scratch_ / "logs" / "linked.log";
  fs::create_symlink(Log("real/target.log"), link);
  App::FileList list{Log("a/ORBClient.log"), scratch_ / "missing.log", link, Log("one/same.log"), Log("two/same.log")};
  CaptureStderr();
  EXPECT_EQ(app_->CreateArchive(list, Archive()), 0);
  EXPECT_EQ(GetCapturedStderr(), "");
  EXPECT_EQ(ListMembers(Archive()),
            (std::vector<std::string>{"- ORBClient.log", "- linked.log", "- same.log", "- same.log"}));
}

TEST_F(ArchiveTest, NothingToArchiveIsOneAndAFailedTarIsTwo) {
  EXPECT_EQ(app_->CreateArchive({}, Archive()), 1);
  EXPECT_EQ(app_->CreateArchive({scratch_ / "gone.log", scratch_ / "kvlog*"}, Archive()), 1);
  EXPECT_FALSE(fs::exists(Archive()));
  // Nothing is quoted, so a blank splits the path.
  CaptureStderr();
  EXPECT_EQ(app_->CreateArchive({Log("with blank.log")}, Archive()), 2);
  EXPECT_NE(GetCapturedStderr().find("Child process terminated with exit status: 2\n"), std::string::npos);
  UseToolsOnly({"sh"});
  testsupport::WriteScript(Bin() / "tar", "exit 3");
  CaptureStderr();
  EXPECT_EQ(app_->CreateArchive({Log("x.log")}, Archive()), 2);
  EXPECT_EQ(GetCapturedStderr(), "Child process terminated with exit status: 3\n");
}

TEST_F(ArchiveTest, TimestampReadsOnTheTwelveHourClockInTheLocalZone) {
  {
    testsupport::ScopedEnv zone("TZ", "UTC");
    tzset();
    const std::time_t when = 1714568709;  // 2024-05-01 13:05:09 UTC
    std::tm local{};
    localtime_r(&when, &local);
    EXPECT_EQ(FormatTimestamp(local), "Wednesday, May 01, 2024, 01:05:09 UTC (+0000)");
    testsupport::ScopedEnv eastern("TZ", "EST5");
    tzset();
    const std::string text = app_->TimestampText();
    int hour = -1, minute = -1, second = -1;
    char zoneText[8] = {};
    EXPECT_EQ(std::sscanf(text.c_str() + text.rfind(", ") + 2, "%2d:%2d:%2d %7s", &hour, &minute, &second, zoneText),
              4) << text;
    EXPECT_TRUE(hour >= 1 && hour <= 12) << text;
    EXPECT_STREQ(zoneText, "EST");
    EXPECT_TRUE(text.ends_with("(-0500)")) << text;
  }
  tzset();
}

}  // namespace
}  // namespace collecttest
