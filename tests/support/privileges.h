#pragma once
// Tests of "permission denied" mean nothing as root: run the body in a forked
// child that has dropped to the unprivileged "nobody" account.
#include <sys/types.h>

#include <functional>

namespace testsupport {

uid_t NobodyUid();
gid_t NobodyGid();
// Runs body as nobody in a child; returns its result (0..255), or -1 if the
// child could not drop privileges or died of a signal.
int RunAsNobody(const std::function<int()>& body);

}  // namespace testsupport
