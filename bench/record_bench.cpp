// Times a full log_write_class record to a draining logd stand-in against a
// raw write() of the same number of bytes on the same kind of socket, and a
// call dropped by the level filter against a bare call into the library.
#include <benchmark/benchmark.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "logclient/logclient.h"
#include "client_process.h"
#include "pairs.h"

namespace {

constexpr int kPassingClass = 3;  // set to VERBOSE: every record passes
constexpr int kOwnLevelClass = 12;   // set to ERROR itself: one load decides
constexpr int kInheritingClass = 9;  // inherits ERROR through its parent chain
constexpr char kThreadName[] = "record_bench";
#define MESSAGE_FORMAT "request %d finished in %d ms: status ok"

std::atomic<bool> g_stopDrain{false};

sockaddr_un AddressOf(const char* path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  strncpy(address.sun_path, path, sizeof address.sun_path - 1);
  return address;
}

// Accepts every connection and throws away whatever arrives, like a logd
// that keeps up.
void Drain(int listener) {
  std::vector<pollfd> watched{{listener, POLLIN, 0}};
  static char sink[1 << 16];
  while (!g_stopDrain.load()) {
    if (poll(watched.data(), watched.size(), 100) <= 0) continue;
    for (size_t i = 1; i < watched.size(); ++i)
      if (watched[i].revents != 0 && read(watched[i].fd, sink, sizeof sink) <= 0) watched[i].fd = -1;
    if (watched[0].revents & POLLIN) watched.push_back({accept(listener, nullptr, nullptr), POLLIN, 0});
  }
}

int ListenAt(const char* path) {
  int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address = AddressOf(path);
  unlink(path);
  if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || listen(fd, 8) != 0) {
    perror("listen");
    exit(1);
  }
  return fd;
}

int ConnectTo(const char* path) {
  int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address = AddressOf(path);
  if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    perror("connect");
    exit(1);
  }
  return fd;
}

int g_rawSocket = -1;

void BM_LogRecord(benchmark::State& state) {
  int i = 0;
  for (auto _ : state)
    log_write_class(kPassingClass, LOG_LEVEL_ERROR, "bench", "record", __LINE__, MESSAGE_FORMAT, ++i, 12);
}

// The same bytes a record of the call above puts on the wire: header, fixed
// fields, "[name]: " and the formatted text with its NUL.
size_t RecordSize() {
  char text[128];
  int length = snprintf(text, sizeof text, "[%s]: " MESSAGE_FORMAT, kThreadName, 1, 12);
  return 4 + 14 + static_cast<size_t>(length) + 1;
}

void BM_RawWrite(benchmark::State& state) {
  std::vector<char> bytes(RecordSize(), 'r');
  for (auto _ : state) benchmark::DoNotOptimize(write(g_rawSocket, bytes.data(), bytes.size()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

void BM_DroppedOwnLevel(benchmark::State& state) {
  for (auto _ : state)
    log_write_class(kOwnLevelClass, LOG_LEVEL_INFO, "bench", "dropped", __LINE__, MESSAGE_FORMAT, 1, 12);
}

void BM_DroppedInherited(benchmark::State& state) {
  for (auto _ : state)
    log_write_class(kInheritingClass, LOG_LEVEL_INFO, "bench", "dropped", __LINE__, MESSAGE_FORMAT, 1, 12);
}

// The floor of a filtered call: the library refuses an out-of-range class at
// its first test.
void BM_BareLibraryCall(benchmark::State& state) {
  int logClass = LOG_CLASS_COUNT;
  for (auto _ : state) {
    benchmark::DoNotOptimize(logClass);
    benchmark::DoNotOptimize(log_get_class_level(logClass));
  }
}

constexpr double kRunSeconds = 0.1;
constexpr int kPairs = 15;

BENCHMARK(BM_LogRecord)->MinTime(kRunSeconds);
BENCHMARK(BM_RawWrite)->MinTime(kRunSeconds);
BENCHMARK(BM_DroppedOwnLevel)->MinTime(kRunSeconds);
BENCHMARK(BM_DroppedInherited)->MinTime(kRunSeconds);
BENCHMARK(BM_BareLibraryCall)->MinTime(kRunSeconds);

}  // namespace

int main(int argc, char** argv) {
  const ScratchClientProcess process("record-bench", kThreadName);

  int listener = ListenAt(log_socket_path());
  std::thread drain(Drain, listener);
  if (log_client_init() != 1) return 1;
  log_set_class_level(kPassingClass, LOG_LEVEL_VERBOSE);
  log_set_class_level(kOwnLevelClass, LOG_LEVEL_ERROR);
  log_set_flags(LOG_FLAG_THREAD_NAME);
  g_rawSocket = ConnectTo(log_socket_path());

  benchmark::Initialize(&argc, argv);
  const bool ran = RunPairs("record_path", "BM_RawWrite", "BM_LogRecord", kPairs) &&
                   RunPairs("dropped_own_level", "BM_BareLibraryCall", "BM_DroppedOwnLevel", kPairs) &&
                   RunPairs("dropped_inherited", "BM_BareLibraryCall", "BM_DroppedInherited", kPairs);

  log_client_shutdown();
  close(g_rawSocket);
  g_stopDrain = true;
  drain.join();
  return ran ? 0 : 1;
}
