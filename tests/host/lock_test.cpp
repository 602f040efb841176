// One copy per user: what the lock file records and when its owner still counts.
#include "host/lock.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <tuple>

#include "support/fixtures.h"
#include "support/processes.h"

namespace fs = std::filesystem;
using namespace testsupport;

TEST(SingleInstance, ClaimsAFreeStaleOrReusedLockButNotOneThisProgramHolds) {
  TempDir home;
  ScopedEnv homeEnv("HOME", home.c_str());
  const fs::path lock = home / ".ORBClient/.tmp/.logmgr.lock";
  EXPECT_FALSE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(ReadFile(lock), Bytes(getpid()));
  for (const fs::path& path : {home / ".ORBClient", home / ".ORBClient/.tmp", lock})
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0700)) << path;
  EXPECT_TRUE(EnsureSingleInstance("logmgr")) << "this very program holds it";
  // An owner that is gone, and a live one that runs another program.
  const pid_t gone = StartProgram({"true"}), other = StartProgram({"sleep", "60"});
  ExitCodeOf(gone);
  // Until it execs, the child still runs this very program and so counts as an owner.
  const std::string otherCommand = "/proc/" + std::to_string(other) + "/cmdline";
  ASSERT_TRUE(WaitUntil([&] { return ReadFile(otherCommand).rfind("sleep", 0) == 0; }));
  for (pid_t owner : {gone, other}) {
    WriteFile(lock, Bytes(owner) + "tail");
    EXPECT_FALSE(EnsureSingleInstance("logmgr")) << owner;
    EXPECT_EQ(ReadFile(lock), Bytes(getpid()) + "tail");
  }
  kill(other, SIGKILL);
  waitpid(other, nullptr, 0);
  // A file where the scratch folder belongs: the lock cannot be checked.
  fs::remove_all(home / ".ORBClient/.tmp");
  WriteFile(home / ".ORBClient/.tmp", "");
  testing::internal::CaptureStderr();
  EXPECT_TRUE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Failed to check if another Keyward service exist\nPlease remove" + lock.string() +
                " file and kill any 'logmgr' which is running.\n");
}

TEST(SingleInstance, ScratchFolderFallsBackToTmpForTheUserThenToTmpAndTheLineRunsOn) {
  TempDir dir;
  WriteFile(dir / "file", "");
  fs::create_directories(dir / "home");
  fs::create_symlink(dir / "file", dir / "home/.ORBClient");
  const std::string user = "norvex-test-" + std::to_string(getpid()), failed = "Failed to create orbHome",
                    tail = " inside user home directory.Not a directory.Using /tmp directory.\n";
  for (auto [home, name, folder, said] :
       {std::tuple<fs::path, std::string, std::string, std::string>{dir / "file", user, "/tmp/" + user,
                                                                    failed + " directory" + tail},
        {dir / "home", "", dir / "home/.ORBClient/.tmp", failed + "/.tmp directory" + tail},
        {"", user, "/tmp", ""}}) {
    ScopedEnv homeEnv("HOME", home.c_str()), userEnv("USER", name.c_str());
    testing::internal::CaptureStderr();
    EXPECT_EQ(GetClientTempDirectory(), folder);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), said);
  }
  fs::remove("/tmp/" + user);
  WriteFile(dir / "cmdline", std::string("./logmgr\0--now", 15));
  EXPECT_EQ(ReadFirstCommandLineField(dir / "cmdline"), "./logmgr") << "the program, not its arguments";
}
