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
  // atomically so that concurrent writers that both see a failed write take
  // the link down only once.
  std::atomic<int> linkFd{-1};
  // Record writes under way. A socket taken down stays open until none is
  // left: closed under a writer, its number could be reused by the next
  // open() and the record would land in somebody's file.
  std::atomic<int> writersInFlight{0};
  // A socket taken down and shut down but not yet closed, -1 when none.
  std::atomic<int> retiredFd{-1};
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

// Takes the link on fd down, unless it is down already: shut down at once so
// that writes in flight fail, closed once the last of them has left.
void TakeLinkDown(int fd);

// Closes a socket taken down once no writer is left.
void CloseRetiredLink();

// One record write on the link: the descriptor it hands out stays open
// (perhaps shut down) for as long as the object lives.
class LinkUse {
 public:
  LinkUse() {
    g_client.writersInFlight.fetch_add(1);
    fd_ = g_client.linkFd.load();
  }
  ~LinkUse() {
    if (g_client.writersInFlight.fetch_sub(1) == 1 && g_client.retiredFd.load() >= 0) CloseRetiredLink();
  }
  LinkUse(const LinkUse&) = delete;
  LinkUse& operator=(const LinkUse&) = delete;

  // The link's socket, or -1 when it is down.
  int fd() const { return fd_; }

 private:
  int fd_;
};

}  // namespace logclient
