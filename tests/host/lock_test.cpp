#include "host/lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <thread>

#include "support/files.h"
#include "support/privileges.h"
#include "support/temp_dir.h"

namespace fs = std::filesystem;
using testsupport::ReadFile;
using testsupport::ScopedEnv;
using testsupport::TempDir;
using testsupport::WriteFile;

namespace {

std::string IdBytes(int32_t id) { return std::string(reinterpret_cast<const char*>(&id), 4); }

// A probe started by a shell command, holding the lock until destroyed.
class LockHolder {
 public:
  LockHolder(const std::string& command, const fs::path& output)
      : pipe_(popen(("exec " + command + " lock logmgr >" + output.string()).c_str(), "w")) {
    for (int i = 0; i < 1000 && ReadFile(output).empty(); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ~LockHolder() { pclose(pipe_); }

 private:
  FILE* pipe_;
};

}  // namespace

class SingleInstance : public ::testing::Test {
 protected:
  std::string ProbeOnce(const std::string& command = HOST_PROBE_PATH) {
    return testsupport::RunAndCapture(command + " lock logmgr </dev/null 2>&1");
  }
  TempDir home;
  ScopedEnv homeEnv{"HOME", home.str().c_str()};
  fs::path lockFile = home / ".ORBClient/.tmp/.logmgr.lock";
};

TEST_F(SingleInstance, FirstStartRecordsItsIdInPrivateFolders) {
  EXPECT_FALSE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(ReadFile(lockFile), IdBytes(getpid()));
  for (const fs::path& path : {home / ".ORBClient", home / ".ORBClient/.tmp", lockFile})
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0700)) << path;
}

TEST_F(SingleInstance, StaleOrReusedIdIsOverwrittenKeepingLaterBytes) {
  pid_t gone = fork();
  if (gone == 0) _exit(0);
  waitpid(gone, nullptr, 0);
  WriteFile(lockFile, IdBytes(gone) + "tail");
  EXPECT_FALSE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(ReadFile(lockFile), IdBytes(getpid()) + "tail");
  // A live process that is another program: the id was reused.
  LockHolder other(HOST_PROBE_PATH, home / "other.out");
  ASSERT_EQ(ReadFile(home / "other.out"), "started\n");
  ASSERT_NE(ReadFile(lockFile), IdBytes(getpid()) + "tail");
  EXPECT_FALSE(EnsureSingleInstance("logmgr"));
  EXPECT_EQ(ReadFile(lockFile), IdBytes(getpid()) + "tail");
}

TEST_F(SingleInstance, SecondCopyBySamePathIsRefusedButARelativePathIsAnotherProgram) {
  fs::path probe = HOST_PROBE_PATH;
  {
    LockHolder first(probe, home / "first.out");
    ASSERT_EQ(ReadFile(home / "first.out"), "started\n");
    EXPECT_EQ(ProbeOnce(), "refused\n");
    EXPECT_EQ(ProbeOnce("cd " + probe.parent_path().string() + " && ./" + probe.filename().string()),
              "started\n");
  }
  EXPECT_EQ(ProbeOnce(), "started\n");
}

TEST(ClientTempDirectory, FallsBackToTmpFolders) {
  TempDir dir;
  WriteFile(dir / "file", "");
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
  }
  ScopedEnv emptyHome("HOME", "");
  EXPECT_EQ(GetClientTempDirectory(), "/tmp") << "an empty HOME is kept, not looked up";
}

// As nobody in a home it may enter but not write; its standard error goes to a file it owns.
TEST(SingleInstanceAsNobody, RefusesWhenTheLockCannotBeChecked) {
  TempDir home;
  ScopedEnv homeEnv("HOME", home.str().c_str());
  ScopedEnv user("USER", "");
  fs::permissions(home.path(), fs::perms(0755));
  fs::create_directories(home / ".ORBClient");
  auto runEnsure = [&] {
    WriteFile(home / "errors", "");
    EXPECT_EQ(chown((home / "errors").c_str(), testsupport::NobodyUid(), 0), 0);
    EXPECT_EQ(testsupport::RunAsNobody([&] {
                dup2(open((home / "errors").c_str(), O_WRONLY), STDERR_FILENO);
                return EnsureSingleInstance("logmgr") ? 1 : 0;
              }),
              1);
    return ReadFile(home / "errors");
  };
  std::string cannotCheck = "Failed to check if another Keyward service exist\nPlease remove" +
                            (home / ".ORBClient/.tmp/.logmgr.lock").string() +
                            " file and kill any 'logmgr' which is running.\n";
  EXPECT_EQ(runEnsure(),
            "Failed to create orbHome/.tmp directory inside user home directory."
            "Permission denied.Using /tmp directory.\nerror opening write : No such file or directory\n" +
                cannotCheck);
  fs::create_directories(home / ".ORBClient/.tmp");
  fs::permissions(home / ".ORBClient/.tmp", fs::perms(0700));
  EXPECT_EQ(runEnsure(), cannotCheck) << "an unreadable lock folder";
}
