#include "host/lock.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

#include "probe_process.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace fs = std::filesystem;
using hosttest::ProbeProcess;
using testsupport::ScopedEnv;
using testsupport::TempDir;

namespace {

std::string IdBytes(int32_t id) { return std::string(reinterpret_cast<const char*>(&id), 4); }

// A process id that belonged to a process that has since been reaped.
pid_t GoneProcessId() {
  pid_t child = fork();
  if (child == 0) _exit(0);
  waitpid(child, nullptr, 0);
  return child;
}

}  // namespace

class SingleInstance : public ::testing::Test {
 protected:
  TempDir home;
  ScopedEnv homeEnv{"HOME", home.str().c_str()};
  fs::path lockFile = home / ".ORBClient/.tmp/.logmgr.lock";
};

TEST_F(SingleInstance, FirstStartRecordsItsIdAndASecondCallIsRefused) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(testsupport::ReadFile(lockFile), IdBytes(getpid()));
  struct stat info {};
  ASSERT_EQ(stat((home / ".ORBClient/.tmp").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0700u);
  ASSERT_EQ(stat(lockFile.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0700u);
  // The same process (same command line) now owns the lock.
  EXPECT_TRUE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(SingleInstance, StaleOrReusedIdIsOverwrittenKeepingLaterBytes) {
  testsupport::WriteFile(lockFile, IdBytes(GoneProcessId()) + "tail");
  EXPECT_FALSE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(testsupport::ReadFile(lockFile), IdBytes(getpid()) + "tail");

  // A live process that is not this program: its id was reused.
  ProbeProcess other({hosttest::ProbePath(), "lock", "other"});
  ASSERT_EQ(other.ReadLine(), "started");
  std::string otherId = testsupport::ReadFile(home / ".ORBClient/.tmp/.other.lock");
  ASSERT_NE(otherId, IdBytes(getpid()));
  testsupport::WriteFile(lockFile, otherId);
  EXPECT_FALSE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(testsupport::ReadFile(lockFile), IdBytes(getpid()));
}

TEST_F(SingleInstance, SecondCopyBySamePathIsRefusedSilently) {
  ProbeProcess first({hosttest::ProbePath(), "lock", "logmgr"});
  ASSERT_EQ(first.ReadLine(), "started");
  ProbeProcess second({hosttest::ProbePath(), "lock", "logmgr"});
  EXPECT_EQ(second.ReadLine(), "refused");
  EXPECT_EQ(second.Finish(), 0);
  EXPECT_EQ(second.errors(), "");
  EXPECT_EQ(first.Finish(), 0);
  // Once the first copy is gone its id is stale and a new copy starts.
  ProbeProcess third({hosttest::ProbePath(), "lock", "logmgr"});
  EXPECT_EQ(third.ReadLine(), "started");
}

TEST_F(SingleInstance, RelativeAndFullPathCountAsDifferentPrograms) {
  fs::path probe = hosttest::ProbePath();
  ProbeProcess full({probe.string(), "lock", "logmgr"});
  ASSERT_EQ(full.ReadLine(), "started");
  ProbeProcess relative({"./" + probe.filename().string(), "lock", "logmgr"},
                        probe.parent_path().string());
  EXPECT_EQ(relative.ReadLine(), "started");
}

TEST(ClientTempDirectory, FallsBackToTmpFolders) {
  TempDir dir;
  testsupport::WriteFile(dir / "file", "");
  std::string user = "norvex-test-" + std::to_string(getpid());
  ScopedEnv userEnv("USER", user.c_str());
  {
    ScopedEnv home("HOME", (dir / "file/home").c_str());
    testing::internal::CaptureStderr();
    EXPECT_EQ(GetClientTempDirectory(), "/tmp/" + user);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Failed to create orbHome directory inside user home directory."
              "Not a directory.Using /tmp directory.\n");
    EXPECT_TRUE(fs::is_directory("/tmp/" + user));
    fs::remove("/tmp/" + user);
    ScopedEnv noUser("USER", "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(GetClientTempDirectory(), "/tmp");
    testing::internal::GetCapturedStderr();
  }
  ScopedEnv emptyHome("HOME", "");
  EXPECT_EQ(GetClientTempDirectory(), "/tmp");
}

// As nobody, in a home that nobody may read but not write.
class SingleInstanceAsNobody : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::permissions(home.path(), fs::perms(0755));
    fs::create_directories(home / ".ORBClient");
    fs::permissions(home / ".ORBClient", fs::perms(0755));
  }
  int RunEnsure() {
    return hosttest::RunAsNobodyCapturingStderr([] { return EnsureSingleInstance("logmgr"); },
                                                errors);
  }
  std::string CannotCheckLines(const std::string& lockPath) {
    return "Failed to check if another Keyward service exist\nPlease remove" + lockPath +
           " file and kill any 'logmgr' which is running.\n";
  }
  TempDir home;
  ScopedEnv homeEnv{"HOME", home.str().c_str()};
  std::string errors;
};

TEST_F(SingleInstanceAsNobody, UncreatableScratchFolderWithoutUserCannotCheck) {
  ScopedEnv user("USER", "");
  std::string scratch = (home / ".ORBClient/.tmp").string();
  EXPECT_EQ(RunEnsure(), 1);
  EXPECT_EQ(errors,
            "Failed to create orbHome/.tmp directory inside user home directory."
            "Permission denied.Using /tmp directory.\n"
            "error opening write : No such file or directory\n" +
                CannotCheckLines(scratch + "/.logmgr.lock"));
}

TEST_F(SingleInstanceAsNobody, UnreadableLockFolderCannotCheck) {
  fs::create_directories(home / ".ORBClient/.tmp");
  fs::permissions(home / ".ORBClient/.tmp", fs::perms(0700));
  EXPECT_EQ(RunEnsure(), 1);
  EXPECT_EQ(errors, CannotCheckLines((home / ".ORBClient/.tmp/.logmgr.lock").string()));
}

TEST(CommandLineField, StopsAtTheFirstNul) {
  TempDir dir;
  testsupport::WriteFile(dir / "cmdline", std::string("./logmgr\0--flag\0", 16));
  EXPECT_EQ(ReadFirstCommandLineField((dir / "cmdline").string()), "./logmgr");
  testsupport::WriteFile(dir / "plain", "no nul");
  EXPECT_EQ(ReadFirstCommandLineField((dir / "plain").string()), "no nul");
  EXPECT_EQ(ReadFirstCommandLineField((dir / "missing").string()), "");
}
