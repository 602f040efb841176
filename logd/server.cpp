#include "logd/server.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "logd/area_values.h"
#include "logd/client_session.h"
#include "logd/log_file.h"
#include "logd/unique_fd.h"

namespace logd {
namespace {

using std::chrono::milliseconds;

volatile sig_atomic_t g_stop = 0;
volatile sig_atomic_t g_reopen = 0;

void OnSignal(int number) {
  if (number == SIGHUP)
    g_reopen = 1;
  else
    g_stop = 1;
}

// No client can set the limit below this, whatever the area says.
constexpr long kClientFloor = 16;
// Descriptors kept for the listener, the log file and its folders, standard streams.
constexpr long kSpareDescriptors = 16;
// How long the listener rests when descriptors have run out.
constexpr milliseconds kAcceptPause{250};

struct Client {
  Client(int socket, const Peer& peer, const Options& options)
      : fd(socket), session(peer, options, Moment::Now()) {}
  UniqueFd fd;
  ClientSession session;
};

// The area's limit, raised to the floor and kept below the descriptor limit.
size_t ClientLimit(int fromArea) {
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  const long room = files.rlim_cur == RLIM_INFINITY ? 1L << 20 : static_cast<long>(files.rlim_cur) - kSpareDescriptors;
  const long wanted = fromArea == 0 ? room : std::max<long>(fromArea, kClientFloor);
  return static_cast<size_t>(std::max(1L, std::min(wanted, room)));
}

Peer PeerOf(int fd) {
  ucred credentials{};
  socklen_t size = sizeof credentials;
  getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &size);
  return {credentials.pid, credentials.uid};
}

int MillisecondsUntil(Clock::time_point when) {
  if (when == Clock::time_point::max()) return -1;
  const auto left = std::chrono::duration_cast<milliseconds>(when - Clock::now()).count();
  return static_cast<int>(std::clamp<long>(left + 1, 0, 1 << 30));
}

// The earlier of two poll timeouts, -1 meaning none.
int Sooner(int a, int b) { return a < 0 ? b : b < 0 ? a : std::min(a, b); }

class Server {
 public:
  Server(int listener, const ServedPaths& paths, const Options& options, const sigset_t& waitMask)
      : listener_(listener), paths_(paths), options_(options), waitMask_(waitMask),
        file_(paths.defaultLog, paths.systemWide, options) {}

  void Run();

 private:
  bool ServeRound(bool listening, int timeoutMs);
  bool ServeClient(Client& client);
  bool TakeBytes(Client& client, const unsigned char* bytes, size_t size);
  void Accept();
  void Drop(size_t index, const std::string& why);
  void DropOverdue();
  Clock::time_point NextDeadline() const;
  void DrainAfterStop();

  UniqueFd listener_;
  const ServedPaths& paths_;
  const Options& options_;
  const sigset_t& waitMask_;
  LogFile file_;
  AreaValues area_;
  std::vector<std::unique_ptr<Client>> clients_;
  Clock::time_point acceptPausedUntil_{};
  bool outOfDescriptorsSaid_ = false;
};

bool Server::TakeBytes(Client& client, const unsigned char* bytes, size_t size) {
  SessionOutput out;
  const bool keep = client.session.Take(bytes, size, Moment::Now(), area_.flags, out);
  for (const std::string& hello : out.hellos) printf("%s\n", hello.c_str());
  if (!out.hellos.empty()) fflush(stdout);
  file_.Add(out.lines, area_.holdMs);
  return keep;
}

// False when the client has gone or must go.
bool Server::ServeClient(Client& client) {
  unsigned char chunk[65536];
  const ssize_t got = read(client.fd.get(), chunk, sizeof chunk);
  if (got < 0 && (errno == EINTR || errno == EAGAIN)) return true;
  if (got <= 0) return false;
  return TakeBytes(client, chunk, static_cast<size_t>(got));
}

void Server::Drop(size_t index, const std::string& why) {
  Client& client = *clients_[index];
  if (!why.empty())
    fprintf(stderr, "logd: dropping client pid=%d uid=%u: %s\n", static_cast<int>(client.session.peer().pid),
            static_cast<unsigned>(client.session.peer().uid), why.c_str());
  file_.Add(client.session.SuppressedReport(true, area_.flags, Moment::Now()), area_.holdMs);
  clients_.erase(clients_.begin() + static_cast<long>(index));
}

void Server::DropOverdue() {
  const Clock::time_point now = Clock::now();
  for (size_t i = clients_.size(); i-- > 0;)
    if (clients_[i]->session.Deadline() <= now) Drop(i, clients_[i]->session.DeadlineProblem());
}

Clock::time_point Server::NextDeadline() const {
  Clock::time_point next = Clock::time_point::max();
  for (const auto& client : clients_) next = std::min(next, client->session.Deadline());
  return next;
}

void Server::Accept() {
  const int fd = accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC);
  if (fd < 0) {
    if (errno != EMFILE && errno != ENFILE && errno != ENOBUFS && errno != ENOMEM) return;
    // The connection stays queued, so polling the listener again at once would only spin.
    if (!outOfDescriptorsSaid_) fprintf(stderr, "logd: cannot take a client: %s; pausing\n", strerror(errno));
    outOfDescriptorsSaid_ = true;
    acceptPausedUntil_ = Clock::now() + kAcceptPause;
    return;
  }
  outOfDescriptorsSaid_ = false;
  const size_t limit = ClientLimit(area_.maxClients);
  if (clients_.size() >= limit) {
    fprintf(stderr, "logd: turning a client away: %zu clients are served already\n", limit);
    close(fd);
    return;
  }
  clients_.push_back(std::make_unique<Client>(fd, PeerOf(fd), options_));
}

// One wait for the listener (when listening) and the clients; false when
// nothing happened within timeoutMs (-1 waits for a deadline or for ever).
bool Server::ServeRound(bool listening, int timeoutMs) {
  std::vector<pollfd> watched;
  for (const auto& client : clients_) watched.push_back({client->fd.get(), POLLIN, 0});
  const bool paused = Clock::now() < acceptPausedUntil_;
  if (listening && !paused) watched.push_back({listener_.get(), POLLIN, 0});
  int wait = Sooner(timeoutMs, MillisecondsUntil(NextDeadline()));
  if (listening && paused) wait = Sooner(wait, MillisecondsUntil(acceptPausedUntil_));
  const timespec timeout{wait / 1000, (wait % 1000) * 1000000L};
  // The stop signals are open only in here, and the kernel delivers them only
  // when ppoll finds nothing ready: by the time a stop is seen, every record
  // clients had written before it, and every connection waiting, is taken.
  const int ready = ppoll(watched.data(), watched.size(), wait < 0 ? nullptr : &timeout, &waitMask_);
  // Read after the wait, so what arrived follows the area as it is now.
  area_ = ReadArea(paths_.area);
  file_.Follow(area_.logPath);
  for (size_t i = clients_.size(); ready > 0 && i-- > 0;)
    if (watched[i].revents != 0 && !ServeClient(*clients_[i]))
      Drop(i, !clients_[i]->session.problem().empty() ? clients_[i]->session.problem()
              : clients_[i]->session.holdsPartial() ? "it hung up in the middle of a message" : "");
  if (ready > 0 && listening && !paused && (watched.back().revents & POLLIN)) Accept();
  DropOverdue();
  return ready != 0;  // a signal counts as something happening
}

// After a stop: what clients are still sending, until they fall quiet for a
// moment or the drain time is over.
void Server::DrainAfterStop() {
  const auto end = Clock::now() + std::chrono::seconds(area_.drainSeconds);
  constexpr auto kQuiet = milliseconds(50);
  while (!clients_.empty() && Clock::now() < end) {
    const auto left = std::chrono::duration_cast<milliseconds>(end - Clock::now());
    if (!ServeRound(false, static_cast<int>(std::min(left, kQuiet).count()))) break;
  }
}

void Server::Run() {
  while (!g_stop) {
    if (g_reopen) file_.Reopen();
    g_reopen = 0;
    ServeRound(true, file_.MillisecondsUntilDue());
    file_.WriteIfDue();
  }
  listener_.Reset();
  unlink(paths_.socket.c_str());
  DrainAfterStop();
  while (!clients_.empty()) Drop(clients_.size() - 1, "");
  file_.Write();
}

sockaddr_un Address(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

bool SomeoneAnswers(const std::string& path) {
  UniqueFd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address = Address(path);
  return fd.valid() && connect(fd.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
}

}  // namespace

sigset_t BlockSignals() {
  struct sigaction action {};
  action.sa_handler = OnSignal;
  sigemptyset(&action.sa_mask);
  sigset_t handled, previous;
  sigemptyset(&handled);
  for (int number : {SIGTERM, SIGINT, SIGHUP}) {
    sigaction(number, &action, nullptr);
    sigaddset(&handled, number);
  }
  // A client that goes away must not take logd with it.
  signal(SIGPIPE, SIG_IGN);
  sigprocmask(SIG_BLOCK, &handled, &previous);
  for (int number : {SIGTERM, SIGINT, SIGHUP}) sigdelset(&previous, number);
  return previous;
}

// Binds under a temporary name and renames into place, so the socket path
// appears only once connections are accepted (a stale socket is replaced).
int Listen(const std::string& path, mode_t mode) {
  const std::string staging = path + ".starting";
  if (staging.size() >= sizeof(sockaddr_un::sun_path)) {
    fprintf(stderr, "logd: socket path too long: %s\n", path.c_str());
    return -1;
  }
  if (SomeoneAnswers(path)) {
    fprintf(stderr, "logd: another logd already listens on %s\n", path.c_str());
    return -1;
  }
  sockaddr_un address = Address(staging);
  UniqueFd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  unlink(staging.c_str());
  // The socket file takes its mode from the mask at bind, whatever logd inherited.
  const mode_t inherited = umask(~mode & 0777);
  const bool bound = fd.valid() && bind(fd.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  umask(inherited);
  if (!bound || listen(fd.get(), SOMAXCONN) != 0 || rename(staging.c_str(), path.c_str()) != 0) {
    fprintf(stderr, "logd: cannot listen on %s: %s\n", path.c_str(), strerror(errno));
    unlink(staging.c_str());
    return -1;
  }
  return fd.Release();
}

void Serve(int listener, const ServedPaths& paths, const Options& options, const sigset_t& waitMask) {
  Server(listener, paths, options, waitMask).Run();
}

}  // namespace logd
