// The real logmgr binary under the test display, driven from outside.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "app_root.h"
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

  pid_t Start() {
    testsupport::ScopedEnv home("HOME", home_.str().c_str());
    testsupport::ScopedEnv root("ORBROOT", root_.str().c_str());
    const pid_t pid = fork();
    if (pid == 0) {
      execl(LOGMGR_PATH, LOGMGR_PATH, static_cast<char*>(nullptr));
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

TEST_F(LogmgrTest, SecondStartEndsAtOnceWithoutAWindow) {
  const pid_t first = Start();
  const Window window = xdrive::WaitForWindow(display_, kTitle, kWaitMs);
  ASSERT_NE(window, 0u);
  const pid_t second = Start();
  EXPECT_EQ(WaitForExit(second, kWaitMs), 0);
  EXPECT_EQ(xdrive::CountWindows(display_, kTitle), 1);
  EXPECT_EQ(waitpid(first, nullptr, WNOHANG), 0) << "the first copy must still run";
  xdrive::RequestClose(display_, window);
  EXPECT_EQ(WaitForExit(first, kWaitMs), 0);
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
