#include "host/lock.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

#include "host/user_paths.h"

namespace {

// mkdir that treats an existing folder as success.
bool MakeFolder(const std::string& path) { return mkdir(path.c_str(), 0700) == 0 || errno == EEXIST; }

void ReportFolderFailure(const char* what) {
  std::cerr << what << strerror(errno) << ".Using /tmp directory.\n";
}

enum class LockState { kClaim, kRunning, kCannotCheck };

// Tells whether the process with this id runs the program that owns the lock.
using OwnerTest = bool (*)(int32_t id, const std::string& name);

std::string CommandLineOf(int32_t id) { return ReadFirstCommandLineField("/proc/" + std::to_string(id) + "/cmdline"); }

bool SameProgramAs(int32_t id, const std::string&) {
  return ReadFirstCommandLineField("/proc/self/cmdline") == CommandLineOf(id);
}

bool ProgramNamed(int32_t id, const std::string& name) {
  std::string folder, program;
  SplitPath(CommandLineOf(id), folder, program);
  return program == name;
}

// Decides from an existing lock file whether its owner still runs.
LockState InspectLockFile(int fd, OwnerTest isOwner, const std::string& name) {
  if (flock(fd, LOCK_EX) != 0) {
    std::cerr << "locking error: " << strerror(errno) << "\n";
    return LockState::kCannotCheck;
  }
  int32_t storedId = 0;
  LockState state = LockState::kClaim;
  // A short read is accepted: the bytes not read stay as initialised.
  if (read(fd, &storedId, sizeof(storedId)) < 0) {
    std::cerr << "reading error for lock file: " << strerror(errno) << "\n";
    state = LockState::kCannotCheck;
  } else if (kill(storedId, 0) == 0 && isOwner(storedId, name)) {
    state = LockState::kRunning;
  }
  flock(fd, LOCK_UN);
  return state;
}

LockState ReadLock(const std::string& lockPath, OwnerTest isOwner, const std::string& name) {
  int fd = open(lockPath.c_str(), O_RDONLY);
  if (fd < 0) return errno == ENOENT ? LockState::kClaim : LockState::kCannotCheck;
  LockState state = InspectLockFile(fd, isOwner, name);
  close(fd);
  return state;
}

// Records this process as the owner; false when that could not be done.
bool ClaimLock(const std::string& lockPath) {
  int fd = open(lockPath.c_str(), O_RDWR | O_CREAT, 0700);
  if (fd < 0) {
    std::cerr << "error opening write : " << strerror(errno) << "\n";
    return false;
  }
  if (flock(fd, LOCK_EX) != 0) {
    std::cerr << "locking error: " << strerror(errno) << "\n";
    close(fd);
    return false;
  }
  int32_t ownId = getpid();
  bool written = pwrite(fd, &ownId, sizeof(ownId), 0) >= 0;
  if (!written) std::cerr << "unable to write in file :" << strerror(errno) << "\n";
  flock(fd, LOCK_UN);
  close(fd);
  return written;
}

void ReportCannotCheck(const std::string& lockPath, const std::string& name) {
  std::string message = "Failed to check if another Keyward service exist\nPlease remove" +
                        lockPath + " file and kill any '" + name + "' which is running.\n";
  std::cerr << message << std::flush;
}

}  // namespace

std::string GetClientTempDirectory() {
  std::string result;
  std::string home = GetHomeDirectory();
  if (!home.empty()) {
    if (!MakeFolder(home + "/.ORBClient")) {
      ReportFolderFailure("Failed to create orbHome directory inside user home directory.");
    } else {
      result = home + "/.ORBClient" + "/.tmp";
      if (MakeFolder(result)) return result;
      ReportFolderFailure("Failed to create orbHome/.tmp directory inside user home directory.");
    }
    std::string user = GetUserName();
    if (!user.empty()) {
      result = "/tmp/" + user;
      mkdir(result.c_str(), 0700);
    }
  }
  return result.empty() ? "/tmp" : result;
}

std::string LockFilePath(const std::string& name) { return GetClientTempDirectory() + "/." + name + ".lock"; }

bool EnsureSingleInstance(const std::string& name) {
  std::string lockPath = LockFilePath(name);
  LockState state = ReadLock(lockPath, SameProgramAs, name);
  if (state == LockState::kRunning) return true;
  if (state == LockState::kClaim && ClaimLock(lockPath)) return false;
  ReportCannotCheck(lockPath, name);
  return true;
}

bool LockHeldByRunningProgram(const std::string& name) {
  const std::string lockPath = LockFilePath(name);
  const LockState state = ReadLock(lockPath, ProgramNamed, name);
  if (state == LockState::kCannotCheck) ReportCannotCheck(lockPath, name);
  return state != LockState::kClaim;
}

std::string ReadFirstCommandLineField(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return "";
  std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  return text.substr(0, text.find('\0'));
}
