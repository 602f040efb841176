#include "support/fake_root.h"

#include "support/files.h"

namespace testsupport {

void MakeFakeInstallRoot(const std::filesystem::path& root) {
  for (const char* name : {"KeywardDaemon", "SvcLedger", "PrimaryKeyward", "util/shelfscan"})
    WriteScript(root / name, "exit 0");
}

}  // namespace testsupport
