// One copy of the utility per user: what the lock file records and when a
// recorded owner still counts.
#include "host/lock.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include "support/fixtures.h"
#include "support/processes.h"

namespace fs = std::filesystem;
using testsupport::ReadFile;

std::string IdBytes(int32_t id) { return std::string(reinterpret_cast<const char*>(&id), 4); }

TEST(SingleInstance, ClaimsAFreeStaleOrReusedLockButNotOneThisProgramHolds) {
  testsupport::TempDir home;
  testsupport::ScopedEnv homeEnv("HOME", home.c_str());
  const fs::path lock = home / ".ORBClient/.tmp/.logmgr.lock";
  EXPECT_FALSE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(ReadFile(lock), IdBytes(getpid()));
  for (const fs::path& path : {home / ".ORBClient", home / ".ORBClient/.tmp", lock})
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0700)) << path;
  EXPECT_TRUE(EnsureSingleInstance("logmgr")) << "this very program holds it";
  // An owner that is gone, and a live one that runs another program.
  const pid_t gone = testsupport::StartProgram({"true"}), other = testsupport::StartProgram({"sleep", "60"});
  testsupport::ExitCodeOf(gone);
  for (pid_t owner : {gone, other}) {
    testsupport::WriteFile(lock, IdBytes(owner) + "tail");
    EXPECT_FALSE(EnsureSingleInstance("logmgr")) << owner;
    EXPECT_EQ(ReadFile(lock), IdBytes(getpid()) + "tail");
  }
  kill(other, SIGKILL);
  waitpid(other, nullptr, 0);
  // A file where the scratch folder belongs: the lock cannot be checked.
  fs::remove_all(home / ".ORBClient/.tmp");
  testsupport::WriteFile(home / ".ORBClient/.tmp", "");
  testing::internal::CaptureStderr();
  EXPECT_TRUE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Failed to check if another Keyward service exist\nPlease remove" + lock.string() +
                " file and kill any 'logmgr' which is running.\n");
}
