// The real logmgr binary under the test display, driven from outside, with
// logd and the demo client logging through it.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <sstream>
#include <thread>

#include "app_root.h"
#include "logclient/logd_process.h"
#include "support/files.h"
#include "support/temp_dir.h"
#include "x_drive.h"

namespace apptest {
namespace {

constexpr const char* kTitle = "Norvex Log Collection Utility";
constexpr int kWaitMs = 30000;

bool WaitUntil(const std::function<bool()>& done, int timeoutMs) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  for (; !done(); std::this_thread::sleep_for(std::chrono::milliseconds(20)))
    if (std::chrono::steady_clock::now() > deadline) return false;
  return true;
}

// Exit status, or -1 when it did not end in time (it is killed then).
int WaitForExit(pid_t pid, int timeoutMs) {
  int status = 0;
  if (!WaitUntil([&] { return waitpid(pid, &status, WNOHANG) != 0; }, timeoutMs)) {
    kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
    return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

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
    for (pid_t pid : started_) WaitForExit(pid, 0);
    if (display_) XCloseDisplay(display_);
  }

  pid_t Start(const char* program = LOGMGR_PATH, const char* argument = nullptr) {
    testsupport::ScopedEnv home("HOME", home_.str().c_str());
    testsupport::ScopedEnv root("ORBROOT", root_.str().c_str());
    const pid_t pid = fork();
    if (pid == 0) {
      execl(program, program, argument, static_cast<char*>(nullptr));
      _exit(127);
    }
    started_.push_back(pid);
    return pid;
  }

  testsupport::TempDir home_;
  testsupport::TempDir root_;
  Display* display_ = nullptr;
  std::vector<pid_t> started_;
};

TEST_F(LogmgrTest, RunCapturesTheClientsVerboseLinesInTheSavedArchiveAndEndsThem) {
  logclient_test::LogdProcess logd(home_.path());
  ASSERT_TRUE(logd.listening());
  const pid_t demoClient = Start(DEMO_CLIENT_PATH, "40");
  const pid_t logmgr = Start();
  const Window window = xdrive::WaitForWindow(display_, kTitle, kWaitMs);
  ASSERT_NE(window, 0u);
  EXPECT_EQ(WaitForExit(Start(), kWaitMs), 0) << "a second copy must end at once";
  EXPECT_EQ(xdrive::CountWindows(display_, kTitle), 1);

  ASSERT_TRUE(xdrive::PressKey(display_, window, "Return"));  // start
  const auto issueLog = home_ / ".ORBClient/logs/issuereproduce/ORBClient.log";
  EXPECT_TRUE(WaitUntil([&] { return DemoLines(testsupport::ReadFile(issueLog), " VERBOSE ") >= 5; }, kWaitMs))
      << logd.Errors();
  ASSERT_TRUE(xdrive::PressKey(display_, window, "Return"));  // stop
  const auto clientLog = logclient_test::DefaultLogFile(home_.path());
  ASSERT_TRUE(WaitUntil([&] { return AllClassesAt(home_.path(), 4) && ReadLogPath(home_.path()) != issueLog; },
                        kWaitMs));
  // Lines already on their way when the levels went back have arrived by now.
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  const std::string afterStop = testsupport::ReadFile(clientLog);

  ASSERT_TRUE(xdrive::PressKey(display_, window, "Tab"));  // to "Save logs"
  ASSERT_TRUE(xdrive::PressKey(display_, window, "Return"));
  const Window chooser = xdrive::WaitForWindow(display_, "Save File", kWaitMs);
  ASSERT_TRUE(chooser && xdrive::PressKey(display_, chooser, "Return"));  // the proposed name in home
  const auto saved = home_ / "NorvexDeskline-IssueLogs.tar.gz";
  ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(saved) && !ArchiveMembers(saved).empty(); }, kWaitMs));
  EXPECT_GE(DemoLines(ArchiveMember(saved, "ORBClient.log"), " VERBOSE "), 5);
  // The client log takes the client's lines again, but no VERBOSE ones.
  const std::string now = testsupport::ReadFile(clientLog);
  EXPECT_GT(DemoLines(now), DemoLines(afterStop));
  EXPECT_EQ(DemoLines(now, " VERBOSE "), DemoLines(afterStop, " VERBOSE ")) << "VERBOSE lines after the stop";
  xdrive::RequestClose(display_, window);
  EXPECT_EQ(WaitForExit(logmgr, kWaitMs), 0);
  WaitForExit(demoClient, 0);  // ended first, or a stopping logd waits for it to fall quiet
}

TEST_F(LogmgrTest, ClosingDuringARunExitsAndLeavesTheLevelsRaised) {
  const pid_t logmgr = Start();
  const Window window = xdrive::WaitForWindow(display_, kTitle, kWaitMs);
  ASSERT_NE(window, 0u);
  // The start button has the focus when the window opens.
  ASSERT_TRUE(xdrive::PressKey(display_, window, "Return"));
  ASSERT_TRUE(WaitUntil([&] { return AllClassesAt(home_.path(), 1); }, kWaitMs)) << "the run did not start";
  const std::string issueLog = home_.str() + "/.ORBClient/logs/issuereproduce/ORBClient.log";
  EXPECT_EQ(ReadLogPath(home_.path()), issueLog);

  xdrive::RequestClose(display_, window);
  EXPECT_EQ(WaitForExit(logmgr, kWaitMs), 0);
  EXPECT_TRUE(AllClassesAt(home_.path(), 1));
  EXPECT_EQ(ReadLogPath(home_.path()), issueLog);
  EXPECT_TRUE(std::filesystem::exists(home_ / ".ORBClient/.kvlogEnabled"));
}

}  // namespace
}  // namespace apptest
