// Times batches of records sent with log_write_class through a real logd
// until its file holds their lines, against the same lines written into a
// file by one write(2) each. Both time a batch; bench/run divides by its size.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "logclient/logclient.h"
#include "client_process.h"
#include "pairs.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBatch = 20000;  // bench/run's divisor of the row
constexpr int kClass = 3;
constexpr char kThreadName[] = "logd_bench";
// Fixed width, so that every line logd writes has the same length.
#define MESSAGE_FORMAT "request %08d finished in 12 ms: status ok"

std::string g_logFile;
off_t g_lineLength = 0;
int g_sequence = 0;

off_t FileSize(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 ? info.st_size : 0;
}

// Waits (politely: logd needs the CPU) until the file has reached size.
// False when the records have not all arrived within ten seconds.
bool WaitForSize(const std::string& path, off_t size) {
  const auto deadline = Clock::now() + std::chrono::seconds(10);
  while (FileSize(path) < size) {
    if (Clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  }
  return true;
}

void SendRecord() {
  log_write_class(kClass, LOG_LEVEL_ERROR, "bench", "logd", __LINE__, MESSAGE_FORMAT, ++g_sequence);
}

void BM_RecordsThroughLogd(benchmark::State& state) {
  for (auto _ : state) {
    const off_t target = FileSize(g_logFile) + kBatch * g_lineLength;
    const auto start = Clock::now();
    for (int i = 0; i < kBatch; ++i) SendRecord();
    if (!WaitForSize(g_logFile, target)) state.SkipWithError("logd did not write every record");
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
  }
}

// What a program would do without logd: format its line and write it itself.
void BM_RecordsWrittenDirectly(benchmark::State& state) {
  const std::string path = g_logFile + ".direct";
  const int fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  char line[256];
  for (auto _ : state) {
    const auto start = Clock::now();
    for (int i = 0; i < kBatch; ++i) {
      int length = snprintf(line, sizeof line, "2026-01-01 00:00:00.000000 ERROR LOG_CONFIG %d [%s]: " MESSAGE_FORMAT "\n",
                            gettid() & 0xffff, kThreadName, ++g_sequence);
      benchmark::DoNotOptimize(write(fd, line, static_cast<size_t>(length)));
    }
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
  }
  close(fd);
}

constexpr double kRunSeconds = 0.2;
constexpr int kPairs = 15;

BENCHMARK(BM_RecordsThroughLogd)->UseManualTime()->MinTime(kRunSeconds);
BENCHMARK(BM_RecordsWrittenDirectly)->UseManualTime()->MinTime(kRunSeconds);

pid_t StartLogd() {
  const pid_t pid = fork();
  if (pid == 0) {
    // Batches are far beyond a client's default rate limit, and a rotation
    // would shrink the file that each batch waits to grow.
    execl(LOGD_PATH, "logd", "--rate-burst", "0", "--max-size", "0", static_cast<char*>(nullptr));
    _exit(127);
  }
  const std::string socket = log_socket_path();
  for (int i = 0; i < 500 && access(socket.c_str(), F_OK) != 0; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  return pid;
}

}  // namespace

int main(int argc, char** argv) {
  const ScratchClientProcess process("logd-bench", kThreadName);

  const pid_t logd = StartLogd();
  if (log_client_init() != 1) return 1;
  log_set_class_level(kClass, LOG_LEVEL_VERBOSE);
  // logd writes a batch at once instead of holding its tail for 200 ms.
  log_set_tuning_a(1);
  g_logFile = client_log_file_path();
  SendRecord();
  if (!WaitForSize(g_logFile, 1)) return 1;
  g_lineLength = FileSize(g_logFile);

  benchmark::Initialize(&argc, argv);
  const bool ran = RunPairs("logd_records", "BM_RecordsWrittenDirectly", "BM_RecordsThroughLogd", kPairs);

  log_client_shutdown();
  kill(logd, SIGTERM);
  waitpid(logd, nullptr, 0);
  return ran ? 0 : 1;
}
