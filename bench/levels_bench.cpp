// App::SetAllLogLevels for the sixty classes, with the area mapped as in an
// issue-reproduction run. Its floor is sixty plain stores into a mapping of
// the same file.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "app/app.h"
#include "logclient/logclient.h"
#include "pairs.h"
#include "tests/support/fixtures.h"

namespace {

constexpr int kClasses = LOG_CLASS_COUNT;

App& TheApp() {
  static App app;
  return app;
}

int32_t* g_levels = nullptr;  // the class words of a second mapping of the area file

void BM_SetAllLogLevels(benchmark::State& state) {
  int level = 1;
  for (auto _ : state) {
    TheApp().SetAllLogLevels(level);
    level ^= 5;  // 1 and 4 in turn, so every store changes the word
  }
  if (log_get_class_level(kClasses - 1) <= 0) state.SkipWithError("levels were not stored");
}

void BM_SixtyMappedStores(benchmark::State& state) {
  int32_t level = 1;
  for (auto _ : state) {
    for (int c = 0; c < kClasses; ++c) __atomic_store_n(&g_levels[c], level, __ATOMIC_RELAXED);
    benchmark::ClobberMemory();
    level ^= 5;
  }
}

BENCHMARK(BM_SetAllLogLevels)->MinTime(0.1);
BENCHMARK(BM_SixtyMappedStores)->MinTime(0.1);

int32_t* MapLevels(const char* areaFile) {
  int fd = open(areaFile, O_RDWR);
  void* area = fd < 0 ? MAP_FAILED : mmap(nullptr, 516, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  if (fd >= 0) close(fd);
  return area == MAP_FAILED ? nullptr : reinterpret_cast<int32_t*>(static_cast<char*>(area) + 4);
}

}  // namespace

int main(int argc, char** argv) {
  // A scratch HOME for the area file, removed at the end.
  const testsupport::TempDir home("levels-bench");
  setenv("HOME", home.c_str(), 1);
  if (log_config_open() != 1 || (g_levels = MapLevels(log_config_file_path())) == nullptr) {
    fprintf(stderr, "levels_bench: no configuration area below %s\n", home.c_str());
    return 1;
  }
  benchmark::Initialize(&argc, argv);
  const bool ran = RunPairs("set_all_levels", "BM_SixtyMappedStores", "BM_SetAllLogLevels", 15);
  benchmark::Shutdown();
  log_client_shutdown();
  return ran ? 0 : 1;
}
