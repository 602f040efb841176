// The real logmgr, driven from outside with logd and the demo client, on
// machines support sees: no client at all, a client without its dump tool.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <sstream>
#include <thread>

#include "logclient/logd_process.h"
#include "window_fixture.h"
#include "x_drive.h"

namespace apptest {
namespace {

namespace fs = std::filesystem;
using namespace testsupport;
constexpr const char* kTitle = "Norvex Log Collection Utility";
constexpr int kWaitMs = 30000;

// The demo client's lines in a log file, those of one level or all.
int DemoLines(const std::string& log, const std::string& level = " ") {
  std::istringstream lines(log);
  int count = 0;
  for (std::string line; std::getline(lines, line);)
    count += line.find(level) != std::string::npos && line.find(" [demo-client]: session ") != std::string::npos;
  return count;
}

class LogmgrTest : public ::testing::Test {
 protected:
  void SetUp() override {
    MakeWindowInstallRoot(root_.path());
    display_ = XOpenDisplay(nullptr);
    ASSERT_NE(display_, nullptr);
  }
  void TearDown() override {
    for (pid_t pid : started_)
      if (waitpid(pid, nullptr, WNOHANG) == 0) kill(pid, SIGKILL), waitpid(pid, nullptr, 0);
    if (display_) XCloseDisplay(display_);
  }

  pid_t Start(const std::vector<std::string>& argv = {LOGMGR_PATH}, const char* output = "/dev/null") {
    return started_.emplace_back(StartProgram(argv, output));
  }

  TempDir home_, root_;
  ScopedEnv homeEnv_{"HOME", home_.str().c_str()}, rootEnv_{"ORBROOT", root_.str().c_str()};
  ScopedEnv criticals_{"G_DEBUG", "fatal-criticals"};
  const std::string output_ = home_.str() + "/logmgr.out";
  Display* display_ = nullptr;
  std::vector<pid_t> started_;
};

TEST_F(LogmgrTest, WithoutAnInstallRootEndsAtOnceWithOneRootLinePerSearch) {
  ScopedEnv root("ORBROOT", "/nonexistent");
  EXPECT_EQ(ExitCodeOf(Start({LOGMGR_PATH}, output_.c_str())), 0) << "ran on with no window";
  // One search builds the App, the other finds the message catalogue.
  EXPECT_EQ(ReadFile(output_), "No valid ORBROOT directory found\nNo valid ORBROOT directory found\n");
}

// Without the dump tool, the run's start shows that its forked copy ends and the flow goes on.
TEST_F(LogmgrTest, RunCapturesTheClientsVerboseLinesInItsArchiveAndEndsThem) {
  fs::remove(root_ / "util/envdump");
  logclient_test::LogdProcess logd(home_.path());
  ASSERT_TRUE(logd.listening());
  const pid_t demoClient = Start({DEMO_CLIENT_PATH, "40"});
  const pid_t logmgr = Start({LOGMGR_PATH}, output_.c_str());
  const Window window = xdrive::WaitForWindow(display_, kTitle, kWaitMs);
  ASSERT_NE(window, 0u);
  EXPECT_EQ(ExitCodeOf(Start()), 0) << "a second copy must end at once";
  EXPECT_EQ(xdrive::CountWindows(display_, kTitle), 1);

  ASSERT_TRUE(xdrive::PressKey(display_, window, "Return"));  // start
  const auto issueLog = home_ / ".ORBClient/logs/issuereproduce/ORBClient.log";
  EXPECT_TRUE(WaitUntil([&] { return DemoLines(ReadFile(issueLog), " VERBOSE ") >= 5; })) << logd.Errors();
  EXPECT_EQ("", RunAndCapture("pgrep -x -P " + std::to_string(logmgr) + " logmgr")) << "a copy runs on";
  const std::string output = ReadFile(output_);
  // Written by the parent after the copy ended: it did not wait on the pipe for ever.
  EXPECT_EQ(output.find("Error executing envdump.\n"), output.rfind("Error executing envdump.\n")) << output;
  EXPECT_NE(output.find("Error executing envdump.\nError copying file: "), std::string::npos) << output;

  ASSERT_TRUE(xdrive::PressKey(display_, window, "Return"));  // stop
  const auto clientLog = logclient_test::DefaultLogFile(home_.path());
  // The stop packs the issue folder once the levels and the path are back.
  const auto packed = issueLog.parent_path() / "NorvexDeskline-IssueLogs.tar.gz";
  ASSERT_TRUE(WaitUntil([&] { return !ArchiveMembers(packed).empty(); }));
  // Lines already on their way when the levels went back have arrived by now.
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  const std::string afterStop = ReadFile(clientLog);

  EXPECT_GE(DemoLines(ArchiveMember(packed, "ORBClient.log"), " VERBOSE "), 5);
  // The client log takes the client's lines again, but no VERBOSE ones.
  EXPECT_TRUE(WaitUntil([&] { return DemoLines(ReadFile(clientLog)) > DemoLines(afterStop); }));
  const std::string now = ReadFile(clientLog);
  EXPECT_EQ(DemoLines(now, " VERBOSE "), DemoLines(afterStop, " VERBOSE ")) << "VERBOSE lines after the stop";
  xdrive::RequestClose(display_, window);
  EXPECT_EQ(ExitCodeOf(logmgr), 0);
  kill(demoClient, SIGKILL);  // ended first, or a stopping logd waits for it to fall quiet
}

// Both flows as a screen reader user does them, in German: the AT-SPI client prints the accessible tree it checks.
TEST_F(LogmgrTest, BothFlowsByKeyboardThroughTheAccessibilityBus) {
  fs::create_directory_symlink(NORVEX_BINARY_DIR "/nls", root_ / "nls");
  logclient_test::LogdProcess logd(home_.path());
  ScopedEnv bridge("NO_AT_BRIDGE", nullptr), language("LANGUAGE", "de"), locale("LC_ALL", "C.UTF-8");
  const fs::path existing = home_ / "existing-by-keyboard.tar.gz", issue = home_ / "issue-by-keyboard.tar.gz";
  const fs::path logs = home_ / ".ORBClient/logs";
  WriteFile(logs / "userActivitylog.1", "older activity\n");
  WriteFile(logs / "kvlog.3", "sibling\n");
  WriteFile(home_ / "keyward.log", "keyward\n");  // a link's content is stored
  fs::create_symlink(home_ / "keyward.log", logs / "KeywardSvr.latest");
  const pid_t run = Start({"dbus-run-session", "--", "/usr/bin/python3",
                           NORVEX_SOURCE_DIR "/tests/app/accessibility_run.py", LOGMGR_PATH, root_.str() + "/nls",
                           existing.string(), issue.string()},
                          output_.c_str());
  EXPECT_EQ(ExitCodeOf(run, 120), 0);
  std::cout << ReadFile(output_);  // the trees, and the tools' complaints
  EXPECT_EQ(ArchiveMembers(existing), "DesklineCheck.txt\nEnvdump.txt\nKeywardSvr.latest\nORBClient.log\n"
                                      "UserSystemInfo.txt\nkvlog.3\nuserActivitylog.1\n");
  // The diagnostics step has just copied the configuration onto the issue folder's client log.
  EXPECT_EQ(ArchiveMember(existing, "ORBClient.log"), kKeywardConfigText);
  EXPECT_EQ(ArchiveMember(existing, "KeywardSvr.latest"), "keyward\n");
  // The saves leave each archive and its reports where they were made; the issue save takes the staged logs.
  EXPECT_TRUE(fs::exists(logs / "NorvexDeskline-ExistingLogs.tar.gz"));
  EXPECT_EQ(RunAndCapture("ls " + (logs / "issuereproduce").string()),
            "DesklineCheck.txt\nEnvdump.txt\nNorvexDeskline-IssueLogs.tar.gz\nUserSystemInfo.txt\n");
  EXPECT_EQ(ArchiveMembers(issue), "DesklineCheck.txt\nEnvdump.txt\nKeywardConfig.xml\nKeywardSvr.latest\n"
                                   "UserSystemInfo.txt\nkvlog.3\nuserActivitylog.1\n");
}

}  // namespace
}  // namespace apptest
