#include "cli/instance_lock.h"

#include <string>

#include "app/constants.h"
#include "app/i18n.h"
#include "cli/failure.h"
#include "host/lock.h"

namespace {
constexpr const char* kOwnName = "logmgr-cli";
}  // namespace

bool AnotherInstanceRuns() {
  // Only read: the window's lock stays the window's.
  if (LockHeldByRunningProgram(std::string(constants::kProgramShortName))) {
    ReportFailure(_("The log collection window (logmgr) is running; close it and try again."));
    return true;
  }
  // By name first, so a copy started under another path counts too; then the
  // claim, kept as the window keeps its own.
  if (LockHeldByRunningProgram(kOwnName) || EnsureSingleInstance(kOwnName)) {
    ReportFailure(_("Another logmgr-cli is running; wait until it has finished."));
    return true;
  }
  return false;
}
