#include "logd/server.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

#include "logclient/logclient.h"
#include "logd/decoder.h"
#include "logd/log_file.h"
#include "logd/record_line.h"

namespace logd {
namespace {

using Clock = std::chrono::steady_clock;

volatile sig_atomic_t g_stop = 0;

void RequestStop(int) { g_stop = 1; }

struct Client {
  int fd;
  std::vector<unsigned char> pending;
};

// The area's tuning values, read afresh on every use because any program of
// the client may change them; the defaults stand in when there is no area.
int Tuning(int value, int low, int high, int fallback) { return value >= low && value <= high ? value : fallback; }
int HoldMs() { return Tuning(log_get_tuning_a(), 1, 2000, 200); }
int DrainSeconds() { return Tuning(log_get_tuning_b(), 0, 100, 2); }
int MaxClients() { return Tuning(log_get_tuning_c(), 0, 2000, 200); }

uint32_t Flags() {
  uint32_t flags = 0;
  return log_get_flags(&flags) ? flags : LOG_FLAG_LOGD_DATE | LOG_FLAG_LOGD_MICROSECONDS;
}

// The log file the area names now; the field need not be terminated.
std::string CurrentLogPath() {
  const char* field = log_get_shared_path();
  return field ? std::string(field, strnlen(field, 256)) : client_log_file_path();
}

sockaddr_un Address(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

bool SomeoneAnswers(const std::string& path) {
  int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address = Address(path);
  bool answers = fd >= 0 && connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  if (fd >= 0) close(fd);
  return answers;
}

// Writes out every complete message; false when the client must be dropped.
bool TakeMessages(Client& client, LogFile& file) {
  size_t offset = 0;
  const uint32_t flags = Flags();
  file.Follow(CurrentLogPath());
  for (;;) {
    Decoded message = DecodeMessage(client.pending.data() + offset, client.pending.size() - offset);
    if (message.status == DecodeStatus::kIncomplete) break;
    if (message.status == DecodeStatus::kMalformed) {
      fprintf(stderr, "logd: dropping client %d: %s\n", client.fd, message.problem.c_str());
      return false;
    }
    if (message.status == DecodeStatus::kHello) {
      printf("%s\n", DescribeMessage(message).c_str());
      fflush(stdout);
    } else {
      file.Add(RecordLine(message.record, flags), HoldMs());
    }
    offset += message.consumed;
  }
  client.pending.erase(client.pending.begin(), client.pending.begin() + static_cast<long>(offset));
  return true;
}

// False when the client has gone (or must go).
bool ServeClient(Client& client, LogFile& file) {
  unsigned char chunk[65536];
  ssize_t got = read(client.fd, chunk, sizeof chunk);
  if (got < 0 && (errno == EINTR || errno == EAGAIN)) return true;
  if (got == 0 && !client.pending.empty())
    fprintf(stderr, "logd: dropping client %d: it hung up in the middle of a message\n", client.fd);
  if (got <= 0) return false;
  client.pending.insert(client.pending.end(), chunk, chunk + got);
  return TakeMessages(client, file);
}

void Accept(int listener, std::vector<Client>& clients) {
  int fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
  if (fd < 0) return;
  const int limit = MaxClients();
  if (limit > 0 && clients.size() >= static_cast<size_t>(limit)) {
    fprintf(stderr, "logd: turning a client away: %d clients are served already\n", limit);
    close(fd);
    return;
  }
  clients.push_back({fd, {}});
}

// One wait for the listener (when >= 0) and the clients; false when nothing
// happened within timeoutMs (-1 waits for ever).
bool ServeRound(int listener, std::vector<Client>& clients, LogFile& file, int timeoutMs,
                const sigset_t& waitMask) {
  std::vector<pollfd> watched;
  for (const Client& client : clients) watched.push_back({client.fd, POLLIN, 0});
  if (listener >= 0) watched.push_back({listener, POLLIN, 0});
  timespec timeout{timeoutMs / 1000, (timeoutMs % 1000) * 1000000L};
  int ready = ppoll(watched.data(), watched.size(), timeoutMs < 0 ? nullptr : &timeout, &waitMask);
  if (ready <= 0) return ready < 0;  // a signal counts as something happening
  for (size_t i = clients.size(); i-- > 0;) {
    if (watched[i].revents == 0 || ServeClient(clients[i], file)) continue;
    close(clients[i].fd);
    clients.erase(clients.begin() + static_cast<long>(i));
  }
  if (listener >= 0 && (watched.back().revents & POLLIN)) Accept(listener, clients);
  return true;
}

// After a stop: what clients are still sending, until they fall quiet for a
// moment or the drain time is over.
void Drain(std::vector<Client>& clients, LogFile& file, const sigset_t& waitMask) {
  const auto end = Clock::now() + std::chrono::seconds(DrainSeconds());
  constexpr auto kQuiet = std::chrono::milliseconds(50);
  while (!clients.empty() && Clock::now() < end) {
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    if (!ServeRound(-1, clients, file, static_cast<int>(std::min(left, kQuiet).count()), waitMask)) break;
  }
}

}  // namespace

sigset_t BlockStopSignals() {
  struct sigaction action {};
  action.sa_handler = RequestStop;
  sigemptyset(&action.sa_mask);
  sigaction(SIGTERM, &action, nullptr);
  sigaction(SIGINT, &action, nullptr);
  // A client that goes away must not take logd with it.
  signal(SIGPIPE, SIG_IGN);
  sigset_t stopSignals, previous;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGTERM);
  sigaddset(&stopSignals, SIGINT);
  sigprocmask(SIG_BLOCK, &stopSignals, &previous);
  sigdelset(&previous, SIGTERM);
  sigdelset(&previous, SIGINT);
  return previous;
}

// Binds under a temporary name and renames into place, so the socket path
// appears only once connections are accepted (a stale socket is replaced).
int Listen(const std::string& path) {
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
  int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  unlink(staging.c_str());
  if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      listen(fd, SOMAXCONN) != 0 || rename(staging.c_str(), path.c_str()) != 0) {
    fprintf(stderr, "logd: cannot listen on %s: %s\n", path.c_str(), strerror(errno));
    if (fd >= 0) close(fd);
    unlink(staging.c_str());
    return -1;
  }
  return fd;
}

void Serve(int listener, const std::string& path, const sigset_t& waitMask) {
  std::vector<Client> clients;
  LogFile file;
  while (!g_stop) {
    ServeRound(listener, clients, file, file.MillisecondsUntilDue(), waitMask);
    file.WriteIfDue();
  }
  close(listener);
  unlink(path.c_str());
  Drain(clients, file, waitMask);
  file.Write();
  for (const Client& client : clients) close(client.fd);
}

}  // namespace logd
