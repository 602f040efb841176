#pragma once
// logd's listening socket and its loop over the connected clients.
#include <signal.h>
#include <sys/types.h>

#include <string>

#include "logd/options.h"

namespace logd {

// Installs the handlers for SIGTERM and SIGINT (stop) and SIGHUP (reopen the
// log file), ignores SIGPIPE and blocks the three; returns the mask to wait
// with, in which they are open again (so none slips in between the test and
// the wait).
sigset_t BlockSignals();

// Listens on path with the socket file's mode; -1 (with a message) when it
// cannot or when another logd already answers there.
int Listen(const std::string& path, mode_t mode);

struct ServedPaths {
  std::string socket;
  std::string area;
  std::string defaultLog;
  bool systemWide = false;
};

// Serves clients until a stop signal. Then every record that clients had
// written before it is written out, then the socket goes (listener closed,
// path removed), and what clients still send is taken for at most the
// area's drain time, until they fall quiet.
void Serve(int listener, const ServedPaths& paths, const Options& options, const sigset_t& waitMask);

}  // namespace logd
