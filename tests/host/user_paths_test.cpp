#include "host/user_paths.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "support/files.h"
#include "support/temp_dir.h"

using testsupport::ScopedEnv;

TEST(HomeAndUser, EmptyHomeIsKeptButUnsetHomeFallsBackToPasswordEntry) {
  const passwd* entry = getpwuid(getuid());
  ASSERT_NE(entry, nullptr);
  std::string passwordHome = entry->pw_dir, passwordName = entry->pw_name;
  {
    ScopedEnv home("HOME", "");
    EXPECT_EQ(GetHomeDirectory(), "");
  }
  ScopedEnv home("HOME", nullptr), user("USER", nullptr);
  EXPECT_EQ(GetHomeDirectory(), passwordHome);
  EXPECT_EQ(GetUserName(), passwordName);
}

TEST(ExecutableOnPath, OthersExecuteBitOverlongElementsAndEmptyElements) {
  testsupport::TempDir dir;
  std::string bin = (dir / "bin").string(), longElement = "/" + std::string(200, 'x');
  testsupport::WriteScript(bin + "/tool", "exit 0", 0701);
  testsupport::WriteScript(bin + "/owner_group_only", "exit 0", 0750);
  ScopedEnv path("PATH", (longElement + ":" + bin).c_str());
  EXPECT_TRUE(IsExecutableOnPath(longElement.size(), "/tool"));
  EXPECT_FALSE(IsExecutableOnPath(longElement.size(), "/owner_group_only"));
  EXPECT_FALSE(IsExecutableOnPath(100, "/tool")) << "the overlong first element stops the search";
  // An empty element joins the name as it is, an absolute path here.
  ScopedEnv emptyElement("PATH", "/nonexistent::/nonexistent");
  EXPECT_TRUE(IsExecutableOnPath(1024, (bin + "/tool").c_str()));
  ScopedEnv noEmptyElement("PATH", "/nonexistent");
  EXPECT_FALSE(IsExecutableOnPath(1024, (bin + "/tool").c_str()));
}
