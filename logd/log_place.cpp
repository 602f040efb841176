#include "logd/log_place.h"

#include <fcntl.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sstream>
#include <vector>

namespace logd {
namespace {

const std::vector<std::string> kSystemFolder = {"var", "log", "norvex"};
constexpr char kUserFolder[] = ".ORBClient";

// File rights of another user for a scope. The process is single-threaded,
// so nothing else runs with them meanwhile.
class ScopedFileRights {
 public:
  ScopedFileRights(bool active, uid_t uid, gid_t gid) : active_(active) {
    if (!active_) return;
    setfsgid(gid);
    setfsuid(uid);
  }
  ~ScopedFileRights() {
    if (!active_) return;
    setfsuid(geteuid());
    setfsgid(getegid());
  }
  ScopedFileRights(const ScopedFileRights&) = delete;

 private:
  bool active_;
};

std::vector<std::string> Components(const std::string& path) {
  std::vector<std::string> parts;
  std::istringstream stream(path);
  for (std::string part; std::getline(stream, part, '/');)
    if (!part.empty()) parts.push_back(part);
  return parts;
}

bool IsFolderName(const std::string& name) { return name != "." && name != ".."; }

// The index of the ".ORBClient" of a user's log file path, 0 when there is none.
size_t UserFolderIndex(const std::vector<std::string>& parts) {
  const size_t n = parts.size();
  if (n >= 4 && parts[n - 4] == kUserFolder && parts[n - 3] == "logs" && parts[n - 2] == "issuereproduce")
    return n - 4;
  if (n >= 3 && parts[n - 3] == kUserFolder && parts[n - 2] == "logs") return n - 3;
  return 0;
}

std::string WalkProblem(const std::string& name) {
  return errno == ELOOP || errno == ENOTDIR ? "\"" + name + "\" is a symbolic link or not a folder"
                                            : "\"" + name + "\": " + strerror(errno);
}

}  // namespace

LogPlace LogPlace::Find(const std::string& path, bool systemWide, std::string& problem) {
  const std::vector<std::string> parts = Components(path);
  const bool inSystemFolder = systemWide && parts.size() == kSystemFolder.size() + 1 &&
                              std::equal(kSystemFolder.begin(), kSystemFolder.end(), parts.begin());
  const size_t userFolder = UserFolderIndex(parts);
  LogPlace place;
  if (!path.starts_with('/') || (!inSystemFolder && userFolder == 0) || parts.back().starts_with('.')) {
    problem = "not a file in a log folder logd serves";
    return place;
  }
  if (!std::all_of(parts.begin(), parts.end(), IsFolderName)) {
    problem = "a \".\" or \"..\" in the path";
    return place;
  }
  place.name_ = parts.back();
  place.folder_.Reset(open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  for (size_t i = 0; i + 1 < parts.size() && place.folder_.valid(); ++i) {
    ScopedFileRights rights(place.asOwner_, place.owner_, place.group_);
    UniqueFd next(openat(place.folder_.get(), parts[i].c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!next.valid()) problem = WalkProblem(parts[i]);
    struct stat info {};
    if (i == userFolder && !inSystemFolder && next.valid() && fstat(next.get(), &info) == 0) {
      if (geteuid() != 0 && info.st_uid != geteuid()) return problem = "the user folder is not logd's user's", LogPlace();
      place.owner_ = info.st_uid;
      place.group_ = info.st_gid;
      place.asOwner_ = geteuid() == 0 && info.st_uid != 0;
    }
    place.folder_ = std::move(next);
  }
  return place;
}

int LogPlace::OpenFile(std::string& problem) const {
  ScopedFileRights rights(asOwner_, owner_, group_);
  struct stat info {};
  // Anything but a regular file is refused before it is opened (a device may
  // act on open), and again after, in case it was swapped in between.
  if (fstatat(folder_.get(), name_.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 && !S_ISREG(info.st_mode))
    return problem = "not a regular file", -1;
  // O_NONBLOCK: a FIFO swapped in must not block logd in open.
  UniqueFd fd(openat(folder_.get(), name_.c_str(),
                     O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0644));
  if (!fd.valid()) return problem = errno == ELOOP ? "a symbolic link" : strerror(errno), -1;
  if (fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode)) return problem = "not a regular file", -1;
  return fd.Release();
}

bool LogPlace::Holds(int fd) const {
  ScopedFileRights rights(asOwner_, owner_, group_);
  struct stat atName {}, open {};
  return fstatat(folder_.get(), name_.c_str(), &atName, AT_SYMLINK_NOFOLLOW) == 0 && fstat(fd, &open) == 0 &&
         atName.st_dev == open.st_dev && atName.st_ino == open.st_ino;
}

void LogPlace::Rotate(int keep) const {
  ScopedFileRights rights(asOwner_, owner_, group_);
  for (int n = keep; n >= 1; --n) {
    const std::string from = n == 1 ? name_ : name_ + "." + std::to_string(n - 1);
    renameat(folder_.get(), from.c_str(), folder_.get(), (name_ + "." + std::to_string(n)).c_str());
  }
}

}  // namespace logd
