#include "support/privileges.h"

#include <grp.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testsupport {

uid_t NobodyUid() {
  const passwd* entry = getpwnam("nobody");
  return entry ? entry->pw_uid : 65534;
}

gid_t NobodyGid() {
  const passwd* entry = getpwnam("nobody");
  return entry ? entry->pw_gid : 65534;
}

int RunAsNobody(const std::function<int()>& body) {
  uid_t uid = NobodyUid();
  gid_t gid = NobodyGid();
  pid_t child = fork();
  if (child < 0) return -1;
  if (child == 0) {
    if (setgroups(0, nullptr) != 0 || setgid(gid) != 0 || setuid(uid) != 0) _exit(255);
    _exit(body() & 0xff);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) == 255) return -1;
  return WEXITSTATUS(status);
}

}  // namespace testsupport
