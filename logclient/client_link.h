#pragma once
// Process-wide state of the logd link, shared by the link setup and the
// record writer.
#include <signal.h>

#include <atomic>
#include <cstdint>

namespace logclient {

inline constexpr int kIdentitySize = 32;

struct ClientState {
  std::atomic<bool> initialised{false};
  bool syslogOpen = false;
  // The connected socket while the link is up, -1 while it is down. Swapped
  // atomically so that concurrent writers that both see a failed write close
  // the socket only once.
  std::atomic<int> linkFd{-1};
  char identity[kIdentitySize] = {};
  uint16_t clientField = 0;
};

extern ClientState g_client;

// Ignores SIGPIPE for its lifetime and then puts the previous action back.
class ScopedIgnoreSigpipe {
 public:
  ScopedIgnoreSigpipe();
  ~ScopedIgnoreSigpipe();
  ScopedIgnoreSigpipe(const ScopedIgnoreSigpipe&) = delete;
  ScopedIgnoreSigpipe& operator=(const ScopedIgnoreSigpipe&) = delete;

 private:
  struct sigaction old_ {};
};

// Creates a close-on-exec Unix stream socket and connects it to path.
// Returns the descriptor, or -1 if no socket could be made; *connected tells
// whether the connect succeeded (a socket whose connect failed stays open,
// as the client family has always done).
int ConnectUnixSocket(const char* path, bool* connected);

// Runs firstCall and marks the library initialised, unless it is already;
// callers racing here wait until the one doing the work is done.
void InitialiseOnce(void (*firstCall)());

// Takes the link down; safe to race with other writers.
void TakeLinkDown();

}  // namespace logclient
