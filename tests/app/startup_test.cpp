// logmgr on machines support sees: no client installed at all, and a client
// whose environment dump tool is missing.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>

#include "app_root.h"
#include "proof/proof_process.h"
#include "support/files.h"
#include "support/temp_dir.h"
#include "x_drive.h"

namespace apptest {
namespace {

using namespace std::chrono_literals;

TEST(Startup, WithoutAnInstallRootEndsAtOnceWithOneRootLinePerSearch) {
  testsupport::TempDir home;
  testsupport::ScopedEnv root("ORBROOT", "/nonexistent");
  testsupport::ScopedEnv criticals("G_DEBUG", "fatal-criticals");
  std::optional<int> status;
  const std::string output = prooftest::RunProofClient({}, home.path(), &status, 60s);
  ASSERT_TRUE(status.has_value()) << "logmgr ran on with no window to close";
  EXPECT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 0) << output;
  // One search builds the App, the other finds the message catalogue.
  EXPECT_EQ("No valid ORBROOT directory found\nNo valid ORBROOT directory found\n", output);
}

TEST(Startup, AnEnvdumpThatCannotStartEndsItsForkedCopyAndTheFlowGoesOn) {
  testsupport::TempDir home, root;
  MakeWindowInstallRoot(root.path());
  std::filesystem::remove(root / "util/envdump");
  std::filesystem::create_directories(home / ".ORBClient/logs");
  testsupport::ScopedEnv rootEnv("ORBROOT", root.str().c_str());
  const pid_t logmgr = prooftest::StartProofClient({}, home.path(), home / "out");
  struct Reap {
    pid_t pid;
    ~Reap() { prooftest::WaitWithin(pid, 0s); }
  } reap{logmgr};
  Display* display = XOpenDisplay(nullptr);
  ASSERT_NE(display, nullptr);
  const Window window = xdrive::WaitForWindow(display, "Norvex Log Collection Utility", 30000);
  // The start button has the focus; "Collect existing logs" is next.
  EXPECT_TRUE(xdrive::PressKey(display, window, "Tab") && xdrive::PressKey(display, window, "Return"));
  EXPECT_NE(xdrive::WaitForWindow(display, "Save File", 30000), 0u);
  XCloseDisplay(display);

  EXPECT_EQ("", testsupport::RunAndCapture("pgrep -x -P " + std::to_string(logmgr) + " logmgr"))
      << "a copy of logmgr runs on";
  const std::string output = testsupport::ReadFile(home / "out");
  EXPECT_EQ(output.find("Error executing envdump.\n"), output.rfind("Error executing envdump.\n")) << output;
  // Written by the parent after the copy ended: it did not wait on the pipe for ever.
  EXPECT_NE(output.find("Error executing envdump.\nError copying file: "), std::string::npos) << output;
}

}  // namespace
}  // namespace apptest
