// The host queries' fallbacks: environment first (even when empty), the
// password entry only when unset; the search path as the callers bound it.
#include "host/user_paths.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <regex>

#include "host/capabilities.h"
#include "host/local_time.h"
#include "support/fixtures.h"
#include "support/processes.h"

using testsupport::ScopedEnv;

TEST(HostQueries, SetValuesWinEvenEmptyAndThePasswordEntryAnswersOnlyWhenUnset) {
  for (const char* value : {"", "/elsewhere"}) {
    ScopedEnv home("HOME", value), user("USER", value);
    EXPECT_EQ(GetHomeDirectory() + "|" + GetUserName(), std::string(value) + "|" + value);
  }
  ScopedEnv home("HOME", nullptr), user("USER", nullptr);
  const passwd* entry = getpwuid(getuid());
  EXPECT_EQ(GetHomeDirectory() + "|" + GetUserName(), std::string(entry->pw_dir) + "|" + entry->pw_name);
  std::string folder, name;
  for (auto [path, parts] : {std::pair{"/a/b/c", "/a/b|c"}, {"name", "name|name"}})
    EXPECT_EQ((SplitPath(path, folder, name), folder + "|" + name), parts);
  EXPECT_TRUE(std::regex_match(GetTimestampForFileName(), std::regex(R"(\d{4}-\d\d-\d\d_\d\d_\d\d_\d\d_[+-]\d{4})")));
}

TEST(HostQueries, SearchPathTriesTheLastElementAndStopsAtOneLongerThanTheBuffer) {
  testsupport::TempDir dir;
  testsupport::WriteScript(dir / "bin/tool", "");
  const std::string bin = dir.str() + "/bin", longer = "/" + std::string(bin.size() + 1, 'x');
  for (auto [path, found] : {std::pair{"/nowhere:" + bin, true}, {longer + ":" + bin, false}}) {
    ScopedEnv pathEnv("PATH", path.c_str());
    EXPECT_EQ(IsExecutableOnPath(bin.size(), "/tool"), found) << path;
  }
}

TEST(Capabilities, NonRootIsLeftAloneAndRootKeepsOverrideEffectiveAndReadSearchOnlyPermitted) {
  if (geteuid() != 0) GTEST_SKIP() << "only root has capabilities to reduce";
  EXPECT_EQ(testsupport::RunForked([] { EXPECT_TRUE(!setresuid(65534, 65534, 65534) && !ReduceCapabilities()); }), 0);
  EXPECT_EQ(testsupport::RunForked([] {
    EXPECT_EQ(ReduceCapabilities(), 0);
    const std::string status = testsupport::ReadFile("/proc/self/status");
    EXPECT_NE(status.find("CapPrm:\t0000000000000006\nCapEff:\t0000000000000002\n"), std::string::npos);
  }), 0);
}
