// App::FindFiles and App::CreateArchive against the bare "find" and "tar"
// doing the same work, and logmgr-cli's "existing" against CreateArchive on
// the same logs, into a file, into a pipe and masked (with the masker's own
// throughput beside it).
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/app.h"
#include "mask/archive_masker.h"
#include "pairs.h"
#include "tests/support/fake_root.h"
#include "tests/support/fixtures.h"

extern char** environ;

namespace fs = std::filesystem;

namespace {

constexpr int kListedFiles = 10000;
constexpr int kArchivedFiles = 20;
constexpr size_t kArchivedFileBytes = 10u << 20;  // 20 x 10 MB of log text

// Removed when the program ends.
struct Scratch {
  testsupport::TempDir top{"collect-bench"};
  // The archived logs are the client's own, so that logmgr-cli collects the same files.
  fs::path home = top / "home", root = top / "root", listing = top / "listing", logs = home / ".ORBClient/logs",
           archive = top / "out.tar.gz";
};

Scratch& Data() {
  static Scratch scratch;
  return scratch;
}

void MakeListingFolder(const fs::path& folder) {
  fs::create_directories(folder);
  for (int i = 0; i < kListedFiles; ++i) {
    const char* family = (i % 2 == 0) ? "kvlog." : "session.";
    std::ofstream(folder / (family + std::to_string(i))) << "x\n";
  }
}

// Lines shaped like the client's own, varied enough to compress like them.
void WriteLogText(const fs::path& file, unsigned seed) {
  std::ofstream out(file, std::ios::binary);
  static const char* kLevels[] = {"INFO", "DEBUG", "VERBOSE", "WARN"};
  size_t written = 0;
  for (unsigned n = seed; written < kArchivedFileBytes; ++n) {
    char line[200];
    const int length = std::snprintf(line, sizeof line,
                                     "2024-05-%02u %02u:%02u:%02u.%03u [%s] ORBClient[%u]: session %u frame %u "
                                     "latency %ums codec h264 queue %u\n",
                                     1 + n % 28, n % 24, n % 60, (n * 7) % 60, n % 1000, kLevels[n % 4],
                                     4000 + n % 97, n % 13, n * 31 % 100003, n % 250, n % 17);
    out.write(line, length);
    written += static_cast<size_t>(length);
  }
}

void PrepareData() {
  Scratch& d = Data();
  fs::create_directories(d.home);
  // Enough of a client install for the install-root search to stop here.
  testsupport::MakeFakeInstallRoot(d.root);
  setenv("HOME", d.home.c_str(), 1);
  setenv("ORBROOT", d.root.c_str(), 1);
  MakeListingFolder(d.listing);
  fs::create_directories(d.logs);
  for (int i = 0; i < kArchivedFiles; ++i) WriteLogText(d.logs / ("kvlog." + std::to_string(i)), i * 1000003u);
}

App& TheApp() {
  static App app;
  return app;
}

App::FileList ArchivedFiles() {
  App::FileList files;
  for (int i = 0; i < kArchivedFiles; ++i) files.push_back(Data().logs / ("kvlog." + std::to_string(i)));
  return files;
}

void BM_FindFiles(benchmark::State& state) {
  for (auto _ : state) {
    App::FileList list;
    TheApp().FindFiles(Data().listing, "kvlog*", list);
    if (list.size() != kListedFiles / 2) state.SkipWithError("wrong count");
    benchmark::DoNotOptimize(list);
  }
}

void BM_BareFind(benchmark::State& state) {
  const fs::path listFile = Data().top / "bare_list.txt";
  const std::string command = "find " + Data().listing.string() + " -type f -name 'kvlog*' > " + listFile.string();
  for (auto _ : state) {
    if (std::system(command.c_str()) != 0) state.SkipWithError("find failed");
    App::FileList list;
    std::ifstream in(listFile);
    for (std::string line; std::getline(in, line);) list.emplace_back(line);
    fs::remove(listFile);
    benchmark::DoNotOptimize(list);
  }
}

void BM_CreateArchive(benchmark::State& state) {
  const App::FileList files = ArchivedFiles();
  for (auto _ : state)
    if (TheApp().CreateArchive(files, Data().archive.string()) != 0) state.SkipWithError("archive failed");
}

void BM_BareTar(benchmark::State& state) {
  std::vector<std::string> words = {"tar", "-czhPf", Data().archive.string(), "--transform=s|^.*\\/||"};
  for (const fs::path& file : ArchivedFiles()) words.push_back(file.string());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  for (auto _ : state) {
    pid_t pid = 0;
    int status = 0;
    if (posix_spawnp(&pid, "tar", nullptr, nullptr, argv.data(), environ) != 0 ||
        waitpid(pid, &status, 0) < 0 || status != 0)
      state.SkipWithError("tar failed");
  }
}

// logmgr-cli with its stderr dropped and, when piped, its whole output read here.
bool RunCli(const std::string& output, bool mask = false) {
  std::vector<std::string> words = {LOGMGR_CLI_PATH, "existing", "-o", output};
  if (mask) words.insert(words.begin() + 2, "--mask");
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  int pipeFds[2] = {-1, -1};
  if (output == "-" && pipe(pipeFds) != 0) return false;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  if (pipeFds[1] >= 0) posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
  if (pipeFds[0] >= 0) posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
  pid_t pid = 0;
  const bool started = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&actions);
  if (pipeFds[1] >= 0) close(pipeFds[1]);
  static char sink[1 << 16];
  while (pipeFds[0] >= 0 && read(pipeFds[0], sink, sizeof sink) > 0) {
  }
  if (pipeFds[0] >= 0) close(pipeFds[0]);
  int status = 0;
  return started && waitpid(pid, &status, 0) == pid && status == 0;
}

void BM_CliExistingToFile(benchmark::State& state) {
  for (auto _ : state)
    if (!RunCli(Data().archive.string())) state.SkipWithError("logmgr-cli failed");
}

void BM_CliExistingToPipe(benchmark::State& state) {
  for (auto _ : state)
    if (!RunCli("-")) state.SkipWithError("logmgr-cli failed");
}

void BM_CliExistingMasked(benchmark::State& state) {
  for (auto _ : state)
    if (!RunCli(Data().archive.string(), true)) state.SkipWithError("logmgr-cli --mask failed");
}

// The masker alone on the archived logs, in processor time: MB/s per core.
bool PrintMaskThroughput() {
  ArchiveMasker masker;
  MaskSettings settings;
  settings.installRoot = Data().root.string();
  settings.home = Data().home.string();
  settings.mapFile = Data().top / "throughput-map.json";
  settings.scratchParent = Data().top / "scratch";
  if (masker.Open(settings) != MaskOpenError::kNone) return false;
  App::FileList files = ArchivedFiles();
  const std::clock_t start = std::clock();
  masker.MaskFiles(files);
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  std::printf("note mask_throughput %.0f\n", kArchivedFiles * kArchivedFileBytes / 1e6 / seconds);
  return files.size() == kArchivedFiles + 1;
}

BENCHMARK(BM_FindFiles)->UseRealTime()->MinTime(0.3);
BENCHMARK(BM_BareFind)->UseRealTime()->MinTime(0.3);
// One archive per run: a pair then takes a few seconds already.
BENCHMARK(BM_CreateArchive)->UseRealTime()->Iterations(1);
BENCHMARK(BM_BareTar)->UseRealTime()->Iterations(1);
BENCHMARK(BM_CliExistingToFile)->UseRealTime()->Iterations(1);
BENCHMARK(BM_CliExistingToPipe)->UseRealTime()->Iterations(1);
BENCHMARK(BM_CliExistingMasked)->UseRealTime()->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  PrepareData();
  const bool ran = RunPairs("find_files", "BM_BareFind", "BM_FindFiles", 11) &&
                   RunPairs("create_archive", "BM_BareTar", "BM_CreateArchive", 7) &&
                   RunPairs("cli_existing", "BM_CreateArchive", "BM_CliExistingToFile", 7) &&
                   RunPairs("cli_pipe", "BM_CliExistingToFile", "BM_CliExistingToPipe", 7) &&
                   RunPairs("cli_mask", "BM_CliExistingToFile", "BM_CliExistingMasked", 7) && PrintMaskThroughput();
  benchmark::Shutdown();
  return ran ? 0 : 1;
}
