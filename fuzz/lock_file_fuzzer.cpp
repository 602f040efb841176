// The single-instance lock file holding any bytes (a stale id, a foreign
// file, a cut one). EnsureSingleInstance must either claim it, writing this
// process's id over the first four bytes only, or refuse because the stored
// id names a live copy of this very program.
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz/check.h"
#include "fuzz/scratch_home.h"
#include "host/lock.h"

namespace {

fuzzsupport::ScratchHome* g_scratch = nullptr;
std::filesystem::path g_lockFile;

int32_t StoredId(const std::string& bytes) {
  int32_t id = 0;
  memcpy(&id, bytes.data(), std::min(bytes.size(), sizeof id));
  return id;
}

bool RunsThisProgram(int32_t id) {
  return kill(id, 0) == 0 &&
         ReadFirstCommandLineField("/proc/" + std::to_string(id) + "/cmdline") ==
             ReadFirstCommandLineField("/proc/self/cmdline");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  g_scratch = new fuzzsupport::ScratchHome;
  g_lockFile = GetClientTempDirectory() + "/.logmgr.lock";
  std::atexit([] { delete g_scratch; });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string before(reinterpret_cast<const char*>(data), size);
  fuzzsupport::WriteBytes(g_lockFile, data, size);
  const bool refused = EnsureSingleInstance("logmgr");
  const std::string after = testsupport::ReadFile(g_lockFile);
  FUZZ_CHECK(refused == RunsThisProgram(StoredId(before)));
  if (refused) {
    FUZZ_CHECK(after == before);
    return 0;
  }
  const int32_t ownId = getpid();
  FUZZ_CHECK(after.size() == std::max(before.size(), sizeof ownId));
  FUZZ_CHECK(memcmp(after.data(), &ownId, sizeof ownId) == 0);
  FUZZ_CHECK(before.size() <= sizeof ownId || after.compare(4, std::string::npos, before, 4) == 0);
  return 0;
}
