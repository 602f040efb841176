// The demo client root and the run command, checked against the code that
// consumes them: the install-root test, the version reader, the report runners
// and the log gathering.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <thread>

#include "app/app.h"
#include "host/client_version.h"
#include "host/install_root.h"
#include "install/shell_run.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace installtest {
namespace {

namespace fs = std::filesystem;

const std::string kMakeDemoRoot = std::string(NORVEX_SOURCE_DIR) + "/tools/make-demo-root";

class DemoRoot : public ::testing::Test {
 protected:
  void TearDown() override { StopLogDaemon(); }

  ShellResult MakeDemoRoot(const std::string& peer = "") {
    return RunShell("env -u LOGD_PEER " + Quoted(kMakeDemoRoot) + " " + Quoted(root_.string()) +
                    (peer.empty() ? "" : " " + Quoted(peer)));
  }

  fs::path Socket() const { return home_.string() + "//.ORBClient/.nvxndclogsocket"; }

  // The daemon outlives the script that started it; it removes its socket on SIGTERM.
  void StopLogDaemon() {
    const std::string pid = testsupport::ReadFile(root_ / "logd-peer.pid");
    if (pid.empty()) return;
    kill(std::stoi(pid), SIGTERM);
    for (int i = 0; i < 100 && fs::exists(Socket()); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }

  testsupport::TempDir scratch_;
  fs::path home_ = scratch_ / "home";
  fs::path root_ = scratch_ / "root";
  fs::path logs_ = home_ / ".ORBClient/logs";
  testsupport::ScopedEnv homeEnv_{"HOME", home_.c_str()};
};

TEST_F(DemoRoot, PassesTheInstallRootTestWithAVersionAndReportTools) {
  const ShellResult made = MakeDemoRoot();
  ASSERT_EQ(made.status, 0) << made.output;
  testsupport::ScopedEnv orbroot("ORBROOT", root_.c_str());
  EXPECT_EQ(FindInstallRoot(), root_.string());
  EXPECT_FALSE(GetClientVersion().empty()) << "no version file for platform " << PlatformFolderName();
  App app;
  const fs::path envdump = scratch_ / "Envdump.txt", check = scratch_ / "DesklineCheck.txt";
  ASSERT_TRUE(app.RunEnvdump(envdump));
  EXPECT_NE(testsupport::ReadFile(envdump).find(root_.string()), std::string::npos);
  ASSERT_TRUE(app.RunDesklineCheck(check));
  EXPECT_NE(testsupport::ReadFile(check).find("KeywardDaemon"), std::string::npos);
}

TEST_F(DemoRoot, SeedsOnlyTheSampleLogsThatAreMissing) {
  testsupport::WriteFile(logs_ / "ORBClient.log", "the user's own log\n");
  const ShellResult first = MakeDemoRoot();
  ASSERT_EQ(first.status, 0) << first.output;
  EXPECT_EQ(testsupport::ReadFile(logs_ / "ORBClient.log"), "the user's own log\n");
  EXPECT_EQ(first.output.find((logs_ / "ORBClient.log").string()), std::string::npos) << first.output;
  for (const char* name : {"KeywardSvr.latest", "kvlog.latest", "userActivitylog.latest"}) {
    EXPECT_FALSE(testsupport::ReadFile(logs_ / name).empty()) << name;
    EXPECT_NE(first.output.find((logs_ / name).string()), std::string::npos) << name << " not reported";
  }

  // What was seeded is what the utility gathers: current and rotated files.
  testsupport::ScopedEnv orbroot("ORBROOT", root_.c_str());
  App app;
  App::FileList found;
  app.FindActivityAndKvlogs(found, app.logsFolder);
  EXPECT_GE(found.size(), 4u);

  const std::string seeded = testsupport::ReadFile(logs_ / "kvlog.latest");
  const ShellResult again = MakeDemoRoot();
  ASSERT_EQ(again.status, 0) << again.output;
  EXPECT_EQ(again.output.find("created"), std::string::npos) << again.output;
  EXPECT_EQ(testsupport::ReadFile(logs_ / "kvlog.latest"), seeded);
}

#ifdef NORVEX_LOGD_PEER
TEST_F(DemoRoot, StartsOneLogDaemonStandInOnThePerUserSocket) {
  const ShellResult made = MakeDemoRoot(NORVEX_LOGD_PEER);
  ASSERT_EQ(made.status, 0) << made.output;
  ASSERT_TRUE(fs::is_socket(Socket())) << made.output;
  sockaddr_un address{AF_UNIX, {}};
  strncpy(address.sun_path, Socket().c_str(), sizeof address.sun_path - 1);
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  EXPECT_EQ(connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0) << strerror(errno);
  close(fd);

  const std::string pid = testsupport::ReadFile(root_ / "logd-peer.pid");
  const ShellResult again = MakeDemoRoot(NORVEX_LOGD_PEER);
  ASSERT_EQ(again.status, 0) << again.output;
  EXPECT_EQ(testsupport::ReadFile(root_ / "logd-peer.pid"), pid) << "a second daemon was started";
}
#endif

TEST(RunCommand, WithoutADisplaySaysSoInOneLineAndFails) {
  const ShellResult run = RunShell("env -u DISPLAY -u WAYLAND_DISPLAY " +
                                   Quoted(std::string(NORVEX_SOURCE_DIR) + "/tools/run-demo"));
  EXPECT_NE(run.status, 0);
  EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 1) << run.output;
  EXPECT_NE(run.output.find("display"), std::string::npos) << run.output;
}

}  // namespace
}  // namespace installtest
