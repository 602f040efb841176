// Initialising the library: identity, system log, configuration area and the
// link to logd; and taking it all down again.
#include "logclient/client_link.h"

#include <pthread.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>

#include "logclient/config_area.h"
#include "logclient/logclient.h"
#include "logclient/text_field.h"
#include "logclient/wire_format.h"

namespace logclient {

ClientState g_client;

ScopedIgnoreSigpipe::ScopedIgnoreSigpipe() {
  struct sigaction ignore {};
  ignore.sa_handler = SIG_IGN;
  sigemptyset(&ignore.sa_mask);
  sigaction(SIGPIPE, &ignore, &old_);
}

ScopedIgnoreSigpipe::~ScopedIgnoreSigpipe() { sigaction(SIGPIPE, &old_, nullptr); }

int ConnectUnixSocket(const char* path, bool* connected) {
  *connected = false;
  int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return -1;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  FillTextField(address.sun_path, path, sizeof address.sun_path);
  *connected = connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  return fd;
}

void TakeLinkDown(int fd) {
  // Only the link that failed: writers racing here take it down once.
  if (fd < 0 || !g_client.linkFd.compare_exchange_strong(fd, -1)) return;
  // Writers that already hold the number fail from here on instead of
  // blocking; new ones see the link down.
  shutdown(fd, SHUT_RDWR);
  g_client.retiredFd.store(fd);
  CloseRetiredLink();
}

void CloseRetiredLink() {
  if (g_client.writersInFlight.load() != 0) return;
  int fd = g_client.retiredFd.exchange(-1);
  if (fd >= 0) close(fd);
}

namespace {

std::mutex g_initLock;

// The forking thread is not writing, and no other thread exists in the child.
void ForgetWritersInChild() { g_client.writersInFlight.store(0); }

[[maybe_unused]] const int g_atforkRegistered = pthread_atfork(nullptr, nullptr, ForgetWritersInChild);

// A new link must not start while an old socket waits for its last writer:
// there is one slot for it. Writers leave quickly once the link is down.
void WaitForRetiredLink() {
  while (g_client.retiredFd.load() >= 0) {
    CloseRetiredLink();
    sched_yield();
  }
}

}  // namespace

void InitialiseOnce(void (*firstCall)()) {
  std::lock_guard<std::mutex> lock(g_initLock);
  if (g_client.initialised.load(std::memory_order_acquire)) return;
  firstCall();
  g_client.initialised.store(true, std::memory_order_release);
}

namespace {

void SetIdentity() {
  static constexpr char kPrefix[] = "norvex-";
  char* identity = g_client.identity;
  memcpy(identity, kPrefix, sizeof kPrefix);
  const char* name = program_invocation_short_name;
  if (name != nullptr)
    strncat(identity, name, kIdentitySize - sizeof kPrefix);  // leaves room for the NUL
  g_client.clientField = 0;
}

bool SendHello(int fd) {
  using namespace wire;
  unsigned char message[kHeaderSize + kHelloFixedSize + kIdentitySize];
  size_t identityLength = strlen(g_client.identity) + 1;
  size_t bodyLength = kHelloFixedSize + identityLength;
  PutHeader(message, bodyLength, kTypeHello);
  PutU16(message + kHeaderSize, g_client.clientField);
  memcpy(message + kHeaderSize + kHelloFixedSize, g_client.identity, identityLength);
  ssize_t written = write(fd, message, kHeaderSize + bodyLength);
  return written == static_cast<ssize_t>(kHeaderSize + bodyLength);
}

void ConnectToLogd() {
  WaitForRetiredLink();
  // A logd that goes away between connect and hello must not kill the host.
  ScopedIgnoreSigpipe guard;
  bool connected = false;
  int fd = ConnectUnixSocket(log_socket_path(), &connected);
  if (!connected) return;
  if (!SendHello(fd)) {
    close(fd);
    return;
  }
  g_client.linkFd.store(fd);
}

}  // namespace
}  // namespace logclient

using logclient::g_client;

extern "C" {

int log_client_init(void) {
  logclient::InitialiseOnce([] {
    logclient::SetIdentity();
    logclient::MapConfigArea();
    openlog(g_client.identity, LOG_PID | LOG_CONS, LOG_USER);
    setlogmask(0x7F);
    g_client.syslogOpen = true;
    logclient::ConnectToLogd();
  });
  bool linkDown = g_client.linkFd.load() < 0;
  if (linkDown) syslog(LOG_ERR, "Failed to connect with logd.");
  if (g_client.syslogOpen) return 1;
  if (linkDown) return 0;
  return logclient::g_area != nullptr ? 1 : 0;
}

void log_client_shutdown(void) {
  std::lock_guard<std::mutex> lock(logclient::g_initLock);
  if (!g_client.initialised.load(std::memory_order_acquire)) return;
  logclient::TakeLinkDown(g_client.linkFd.load());
  if (g_client.syslogOpen) {
    closelog();
    g_client.syslogOpen = false;
  }
  logclient::UnmapConfigArea();
  g_client.initialised.store(false, std::memory_order_release);
}

}  // extern "C"
