// A client program of the logging library for the load and fault tests:
//   load TAG THREADS RECORDS      THREADS threads each send RECORDS records,
//                                 then "TAG done"
//   until-killed TAG MARKER AFTER records until MARKER exists, then AFTER more;
//                                 the system log is a private socket, and the
//                                 number of AFTER records it got is printed
//   area                          maps the configuration area and prints what
//                                 the getters and one setter answer
// Like every writer of the client family, it ignores SIGPIPE.
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "logclient/logclient.h"

namespace {

constexpr int kClass = 5;              // inherits class 0's ERROR in a fresh area
constexpr int kLongEvery = 997;        // every so many records one near the size limit
constexpr size_t kLongText = 8000;

__attribute__((format(printf, 1, 2))) void Record(const char* format, ...) {
  va_list args;
  va_start(args, format);
  log_write_class_v(kClass, LOG_LEVEL_ERROR, "proof", "client", 0, format, args);
  va_end(args);
}

int Load(const char* tag, int threads, int records) {
  log_client_init();
  const std::string longTail(kLongText, 'x');
  std::vector<std::thread> writers;
  for (int t = 0; t < threads; ++t) {
    writers.emplace_back([&, t] {
      const std::string name = std::string(tag) + "-t" + std::to_string(t);
      pthread_setname_np(pthread_self(), name.c_str());
      for (int n = 0; n < records; ++n)
        Record("%s t%d n%d %s", tag, t, n, n % kLongEvery == 0 ? longTail.c_str() : "");
    });
  }
  for (std::thread& writer : writers) writer.join();
  Record("%s done", tag);
  log_client_shutdown();
  return 0;
}

// The system log of this process only: /dev is a private tmpfs in a mount
// namespace of its own, with a datagram socket at /dev/log. Must run before
// any thread exists.
int PrivateSystemLog() {
  if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("tmpfs", "/dev", "tmpfs", 0, "mode=0755") != 0) {
    perror("proof_client: private /dev");
    return -1;
  }
  int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  strcpy(address.sun_path, "/dev/log");
  if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    perror("proof_client: /dev/log");
    return -1;
  }
  return fd;
}

std::atomic<int> g_afterSeen{0};

void CountSystemLog(int fd, std::string tag) {
  const std::string after = tag + " after ";
  char message[16384];
  for (;;) {
    ssize_t got = recv(fd, message, sizeof message - 1, 0);
    if (got < 0) return;
    message[got] = '\0';
    if (strstr(message, after.c_str()) != nullptr) ++g_afterSeen;
  }
}

int UntilKilled(const char* tag, const char* marker, int after) {
  int systemLog = PrivateSystemLog();
  if (systemLog < 0) return 4;
  std::thread(CountSystemLog, systemLog, std::string(tag)).detach();
  log_client_init();
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  for (int n = 0; access(marker, F_OK) != 0; ++n) {
    if (std::chrono::steady_clock::now() > deadline) return 3;
    Record("%s before %d", tag, n);
  }
  for (int n = 0; n < after; ++n) Record("%s after %d", tag, n);
  for (int i = 0; i < 500 && g_afterSeen < after; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  printf("syslog after=%d\n", g_afterSeen.load());
  return 0;
}

int Area() {
  const int opened = log_config_open();
  const int level0 = log_get_class_level(0);
  const int level3 = log_get_class_level(3);
  const int set3 = log_set_class_level(3, LOG_LEVEL_VERBOSE);
  const char* path = log_get_shared_path();
  printf("open=%d level0=%d level3=%d set3=%d tuningA=%d path=%.256s\n", opened, level0, level3, set3,
         log_get_tuning_a(), path ? path : "(null)");
  log_client_shutdown();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  signal(SIGPIPE, SIG_IGN);
  const std::string command = argc > 1 ? argv[1] : "";
  if (command == "load" && argc == 5) return Load(argv[2], atoi(argv[3]), atoi(argv[4]));
  if (command == "until-killed" && argc == 5) return UntilKilled(argv[2], argv[3], atoi(argv[4]));
  if (command == "area" && argc == 2) return Area();
  fprintf(stderr, "usage: proof_client load TAG THREADS RECORDS | until-killed TAG MARKER AFTER | area\n");
  return 2;
}
