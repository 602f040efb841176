#pragma once
// The scene every logmgr-cli test runs in: a scratch home with client logs,
// a fake install root, no display; the command runs as a subprocess.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/fake_root.h"
#include "support/fixtures.h"
#include "support/processes.h"

namespace clitest {

namespace fs = std::filesystem;
using namespace testsupport;

class Cli : public testing::Test {
 protected:
  Cli() {
    MakeFakeInstallRoot(root_);
    WriteFile(root_ / "config/KeywardConfig.xml", "<KeywardConfig/>\n");
    WriteScript(root_ / "util/envdump", "echo dump > \"$HOME/envdump.out\"; echo \"$HOME/envdump.out\"");
    WriteScript(root_ / "util/desklinecheck.sh", "echo checked");
    for (const char* name : {"kvlog.1", "userActivitylog.latest", "KeywardSvr.latest", "ORBClient.log"})
      WriteFile(logs_ / name, std::string(name) + "\n");
  }

  // Exit code of logmgr-cli with args; its output and errors go to output_.
  int Run(std::vector<std::string> args) {
    args.insert(args.begin(), LOGMGR_CLI_PATH);
    return ExitCodeOf(StartProgram(args, output_.c_str()));
  }
  std::string Out(const char* name) const { return (scratch_ / name).string(); }
  // Member names of an archive, in archive order.
  static std::string Members(const fs::path& archive) { return RunAndCapture("tar -tzf " + archive.string()); }

  TempDir scratch_;
  fs::path home_ = scratch_ / "home", root_ = scratch_ / "root", logs_ = home_ / ".ORBClient/logs",
           issue_ = logs_ / "issuereproduce", output_ = scratch_ / "output";
  ScopedEnv homeEnv_{"HOME", home_.c_str()}, rootEnv_{"ORBROOT", root_.c_str()};
  ScopedEnv noX_{"DISPLAY", nullptr}, noWayland_{"WAYLAND_DISPLAY", nullptr};
};

}  // namespace clitest
