// logd-peer: a stand-in log daemon for tests and demos. Listens on a Unix
// socket, accepts any number of logging clients and prints one line per
// message it decodes. Stops on SIGTERM or SIGINT and removes its socket.
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "tools/logd_peer/decoder.h"

namespace {

volatile sig_atomic_t g_stop = 0;

void RequestStop(int) { g_stop = 1; }

struct Client {
  int fd;
  std::vector<unsigned char> pending;
};

// Signals stay blocked except inside ppoll, so a stop request cannot slip in
// between the flag test and the wait.
sigset_t BlockStopSignals() {
  struct sigaction action {};
  action.sa_handler = RequestStop;
  sigemptyset(&action.sa_mask);
  sigaction(SIGTERM, &action, nullptr);
  sigaction(SIGINT, &action, nullptr);
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
// appears only once connections are accepted (tests wait for it to exist).
int Listen(const std::string& path) {
  std::string staging = path + ".starting";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (staging.size() >= sizeof address.sun_path) {
    fprintf(stderr, "logd-peer: socket path too long: %s\n", path.c_str());
    return -1;
  }
  memcpy(address.sun_path, staging.c_str(), staging.size() + 1);
  int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  unlink(staging.c_str());
  if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      listen(fd, 64) != 0 || rename(staging.c_str(), path.c_str()) != 0) {
    fprintf(stderr, "logd-peer: cannot listen on %s: %s\n", path.c_str(), strerror(errno));
    if (fd >= 0) close(fd);
    return -1;
  }
  return fd;
}

// Prints every complete message; false when the client must be dropped.
bool DrainMessages(Client& client) {
  size_t offset = 0;
  for (;;) {
    logd::Decoded message =
        logd::DecodeMessage(client.pending.data() + offset, client.pending.size() - offset);
    if (message.status == logd::DecodeStatus::kIncomplete) break;
    if (message.status == logd::DecodeStatus::kMalformed) {
      fprintf(stderr, "logd-peer: dropping client %d: %s\n", client.fd, message.problem.c_str());
      return false;
    }
    std::string line = logd::DescribeMessage(message) + "\n";
    fputs(line.c_str(), stdout);
    fflush(stdout);
    offset += message.consumed;
  }
  client.pending.erase(client.pending.begin(), client.pending.begin() + static_cast<long>(offset));
  return true;
}

// False when the client has gone (or must go).
bool ServeClient(Client& client) {
  unsigned char chunk[16384];
  ssize_t got = read(client.fd, chunk, sizeof chunk);
  if (got < 0 && (errno == EINTR || errno == EAGAIN)) return true;
  if (got <= 0) return false;
  client.pending.insert(client.pending.end(), chunk, chunk + got);
  return DrainMessages(client);
}

void Serve(int listener, const sigset_t& waitMask) {
  std::vector<Client> clients;
  while (!g_stop) {
    std::vector<pollfd> watched{{listener, POLLIN, 0}};
    for (const Client& client : clients) watched.push_back({client.fd, POLLIN, 0});
    if (ppoll(watched.data(), watched.size(), nullptr, &waitMask) < 0) continue;
    for (size_t i = clients.size(); i-- > 0;) {
      if (watched[i + 1].revents == 0 || ServeClient(clients[i])) continue;
      close(clients[i].fd);
      clients.erase(clients.begin() + static_cast<long>(i));
    }
    if (watched[0].revents & POLLIN) {
      int fd = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
      if (fd >= 0) clients.push_back({fd, {}});
    }
  }
  for (const Client& client : clients) close(client.fd);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: logd-peer SOCKET-PATH\n");
    return 2;
  }
  sigset_t waitMask = BlockStopSignals();
  int listener = Listen(argv[1]);
  if (listener < 0) return 1;
  Serve(listener, waitMask);
  close(listener);
  unlink(argv[1]);
  return 0;
}
