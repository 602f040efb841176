#pragma once
// Where logd may write: a regular file directly inside a log folder it
// serves, reached from "/" without following a symbolic link on any
// component. The folders are the system-wide "/var/log/norvex" (when logd
// serves system-wide) and a user's ".ORBClient/logs" with its issue folder
// "issuereproduce"; a user's folder belongs to the owner of its ".ORBClient",
// and everything in it is done with that user's file rights, never root's.
#include <sys/types.h>

#include <string>

#include "logd/unique_fd.h"

namespace logd {

class LogPlace {
 public:
  // The place of path, or an invalid one with the reason in problem.
  static LogPlace Find(const std::string& path, bool systemWide, std::string& problem);

  bool valid() const { return folder_.valid(); }
  // The file opened for appending (created when missing); -1 with the
  // reason in problem when it is not a regular file or cannot be opened.
  int OpenFile(std::string& problem) const;
  // Whether the file now at the place's name is the one open as fd.
  bool Holds(int fd) const;
  // NAME.(keep-1) to NAME.keep, ..., NAME to NAME.1.
  void Rotate(int keep) const;

 private:
  UniqueFd folder_;
  std::string name_;
  uid_t owner_ = 0;
  gid_t group_ = 0;
  bool asOwner_ = false;  // switch file rights to the owner for work in the folder
};

}  // namespace logd
