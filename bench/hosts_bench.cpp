// logmgr-cli hosts over loopback ssh: 8 sshd hosts, each serving the same
// 20 MB of client logs, fetched 8 at a time against one at a time. The
// fan-out must overlap the hosts' work, so on two cores it should take
// little more than half as long.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "pairs.h"
#include "support/fake_root.h"
#include "support/fixtures.h"
#include "support/sshd.h"

namespace fs = std::filesystem;

namespace {

constexpr int kHosts = 8;

struct Fleet {
  testsupport::TempDir top{"hosts-bench"};
  testsupport::SshdHosts servers;
  fs::path root = top / "root", bin = top / "bin", logs = top / "logs", out = top / "out";
  std::string hosts;
};

Fleet& TheFleet() {
  static Fleet fleet;
  return fleet;
}

// Four 5 MB files of log-like lines, which compress as the client's do.
void WriteLogs(const fs::path& folder) {
  fs::create_directories(folder);
  for (int file = 0; file < 4; ++file)
    testsupport::RunAndCapture(
        "awk 'BEGIN { for (n = " + std::to_string(file) + "; bytes < 5242880; n += 7) { line = sprintf(\"2024-05-%02d "
        "%02d:%02d:%02d.%03d [INFO] ORBClient[%d]: session %d frame %d latency %dms\", 1 + n % 28, n % 24, n % 60, "
        "n * 7 % 60, n % 1000, 4000 + n % 97, n % 13, n * 31 % 100003, n % 250); print line; bytes += length(line) + 1 "
        "} }' > " + (folder / ("kvlog." + std::to_string(file))).string());
}

// Every host a home of its own (the command's lock is per home) with the same logs.
bool PrepareFleet() {
  Fleet& f = TheFleet();
  testsupport::MakeFakeInstallRoot(f.root);
  fs::create_directories(f.bin);
  fs::create_directories(f.out);
  fs::create_symlink(LOGMGR_CLI_PATH, f.bin / "logmgr-cli");
  WriteLogs(f.logs);
  for (int host = 0; host < kHosts; ++host) {
    const std::string name = std::string("h").append(std::to_string(host));
    const fs::path home = f.top / name;
    // Reports are written beside the logs, so each home has its own folder of links.
    fs::create_directories(home / ".ORBClient/logs");
    for (const auto& log : fs::directory_iterator(f.logs))
      fs::create_hard_link(log.path(), home / ".ORBClient/logs" / log.path().filename());
    if (f.servers.Start(name, {"PATH=" + f.bin.string() + ":/usr/bin:/bin", "HOME=" + home.string(),
                               "ORBROOT=" + f.root.string()}) < 0)
      return false;
    f.hosts += " " + name;
  }
  return true;
}

bool FetchAll(int jobs) {
  Fleet& f = TheFleet();
  const std::string command = LOGMGR_CLI_PATH " hosts" + f.hosts + " -o " + f.out.string() + " --ssh-config " +
                              f.servers.config().string() + " --jobs " + std::to_string(jobs) + " >/dev/null 2>&1";
  const bool ok = std::system(command.c_str()) == 0;
  for (const auto& entry : fs::directory_iterator(f.out)) fs::remove(entry.path());
  return ok;
}

void BM_HostsOneAtATime(benchmark::State& state) {
  for (auto _ : state)
    if (!FetchAll(1)) state.SkipWithError("a host failed");
}

void BM_HostsEightAtATime(benchmark::State& state) {
  for (auto _ : state)
    if (!FetchAll(8)) state.SkipWithError("a host failed");
}

BENCHMARK(BM_HostsOneAtATime)->UseRealTime()->Iterations(1);
BENCHMARK(BM_HostsEightAtATime)->UseRealTime()->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const bool ran = PrepareFleet() && RunPairs("hosts_fanout", "BM_HostsOneAtATime", "BM_HostsEightAtATime", 5);
  benchmark::Shutdown();
  return ran ? 0 : 1;
}
