#pragma once
// logd's listening socket and its loop over the connected clients.
#include <signal.h>

#include <string>

namespace logd {

// Installs the stop handler for SIGTERM and SIGINT, ignores SIGPIPE and
// blocks the stop signals; returns the mask to wait with, in which they are
// open again (so a stop cannot slip in between the test and the wait).
sigset_t BlockStopSignals();

// Listens on path; -1 (with a message) when it cannot or when another logd
// already answers there.
int Listen(const std::string& path);

// Serves clients until a stop signal, then stops listening (closes listener
// and removes path), takes what the clients are still sending for at most
// the area's drain time, and writes out every line received.
void Serve(int listener, const std::string& path, const sigset_t& waitMask);

}  // namespace logd
