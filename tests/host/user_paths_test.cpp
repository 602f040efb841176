#include "host/user_paths.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cctype>

#include "support/files.h"
#include "support/temp_dir.h"

using testsupport::ScopedEnv;
using testsupport::TempDir;
using testsupport::WriteScript;

TEST(HomeAndUser, EmptyHomeIsKeptButUnsetHomeFallsBackToPasswordEntry) {
  const passwd* entry = getpwuid(getuid());
  ASSERT_NE(entry, nullptr);
  {
    ScopedEnv home("HOME", "");
    EXPECT_EQ(GetHomeDirectory(), "");
  }
  ScopedEnv home("HOME", nullptr);
  EXPECT_EQ(GetHomeDirectory(), entry->pw_dir);
  ScopedEnv user("USER", nullptr);
  EXPECT_EQ(GetUserName(), entry->pw_name);
}

class ExecutableOnPath : public ::testing::Test {
 protected:
  void SetUp() override {
    WriteScript(bin / "tool", "exit 0", 0755);
    WriteScript(bin / "owner_group_only", "exit 0", 0750);
    WriteScript(bin / "others_only", "exit 0", 0701);
  }
  TempDir dir;
  std::filesystem::path bin = dir / "bin";
};

TEST_F(ExecutableOnPath, OnlyTheOthersExecuteBitCounts) {
  ScopedEnv path("PATH", ("/nonexistent:" + bin.string()).c_str());
  EXPECT_TRUE(IsExecutableOnPath(1024, "/tool"));
  EXPECT_TRUE(IsExecutableOnPath(1024, "/others_only"));
  EXPECT_FALSE(IsExecutableOnPath(1024, "/owner_group_only"));
  EXPECT_FALSE(IsExecutableOnPath(1024, "/missing"));
}

TEST_F(ExecutableOnPath, OverlongElementEndsTheSearch) {
  std::string longElement = "/" + std::string(200, 'x');
  ScopedEnv path("PATH", (longElement + ":" + bin.string()).c_str());
  EXPECT_FALSE(IsExecutableOnPath(100, "/tool"));
  EXPECT_TRUE(IsExecutableOnPath(longElement.size(), "/tool"));
  ScopedEnv lastOverlong("PATH", (bin.string() + ":" + longElement).c_str());
  EXPECT_TRUE(IsExecutableOnPath(bin.string().size(), "/tool"));
}

TEST_F(ExecutableOnPath, EmptyElementTakesTheNameFromTheRoot) {
  std::string absolute = (bin / "tool").string();
  {
    ScopedEnv path("PATH", "/nonexistent::/nonexistent");
    EXPECT_TRUE(IsExecutableOnPath(1024, absolute.c_str()));
  }
  ScopedEnv path("PATH", "/nonexistent");
  EXPECT_FALSE(IsExecutableOnPath(1024, absolute.c_str()));
  ScopedEnv unset("PATH", nullptr);
  EXPECT_FALSE(IsExecutableOnPath(1024, "/tool"));
}

TEST(PathText, SplitPathAtLastSlash) {
  std::string folder, name;
  SplitPath("/opt/a/file.txt", folder, name);
  EXPECT_EQ(folder, "/opt/a");
  EXPECT_EQ(name, "file.txt");
  SplitPath("plain", folder, name);
  EXPECT_EQ(folder, "plain");
  EXPECT_EQ(name, "plain");
  SplitPath("dir/", folder, name);
  EXPECT_EQ(folder, "dir");
  EXPECT_EQ(name, "");
}

TEST(LocalTime, FormatsTimestampsAndRejectsOverlongText) {
  // Shape 2024-05-01_13_07_59_+0200: "9" stands for a digit, "+" for a sign.
  std::string shape = "9999-99-99_99_99_99_+9999", stamp = GetTimestampForFileName();
  ASSERT_EQ(stamp.size(), shape.size()) << stamp;
  for (size_t i = 0; i < shape.size(); ++i) {
    if (shape[i] == '9')
      EXPECT_TRUE(isdigit(static_cast<unsigned char>(stamp[i]))) << stamp;
    else if (shape[i] == '+')
      EXPECT_TRUE(stamp[i] == '+' || stamp[i] == '-') << stamp;
    else
      EXPECT_EQ(stamp[i], shape[i]) << stamp;
  }
  EXPECT_EQ(FormatLocalTime(std::string(300, 'x').c_str()), "");
  EXPECT_EQ(FormatLocalTime("%Y").size(), 4u);
}

TEST(LocalTime, ParsesInTheLocalZone) {
  ScopedEnv zone("TZ", "UTC");
  tzset();
  EXPECT_EQ(ParseLocalTime("2024-05-01 13:07:59", "%Y-%m-%d %H:%M:%S"), 1714568879);
  // Only the first 255 characters are parsed: here the month falls off the end.
  EXPECT_EQ(ParseLocalTime(std::string(200, ' ') + "2024-05-01 13:07", "%Y-%m-%d %H:%M"),
            1714568820);
  EXPECT_NE(ParseLocalTime(std::string(250, ' ') + "2024-05-01 13:07", "%Y-%m-%d %H:%M"),
            1714568820);
  ScopedEnv berlin("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
  tzset();
  EXPECT_EQ(ParseLocalTime("2024-05-01 15:07:59", "%Y-%m-%d %H:%M:%S"), 1714568879);
  unsetenv("TZ");
  tzset();
}
