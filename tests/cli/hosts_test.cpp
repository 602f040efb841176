// logmgr-cli hosts against real sshd servers on 127.0.0.1, and against a
// stand-in ssh for what a server cannot be made to do on cue.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <string>

#include "support/fake_root.h"
#include "support/fixtures.h"
#include "support/processes.h"
#include "support/sshd.h"

namespace {

namespace fs = std::filesystem;
using namespace testsupport;

const char* const kLogs[] = {"kvlog.1", "userActivitylog.latest", "KeywardSvr.latest", "ORBClient.log"};

class Hosts : public testing::Test {
 protected:
  Hosts() {
    MakeFakeInstallRoot(root_);
    WriteFile(root_ / "config/KeywardConfig.xml", "<KeywardConfig/>\n");
    WriteScript(root_ / "util/envdump", "echo dump > \"$HOME/envdump.out\"; echo \"$HOME/envdump.out\"");
    WriteScript(root_ / "util/desklinecheck.sh", "echo checked");
    fs::create_directories(out_);
    fs::create_directories(bin_);
    fs::create_symlink(LOGMGR_CLI_PATH, bin_ / "logmgr-cli");
  }

  // A thin client's home with its logs, each text naming the client.
  fs::path ClientHome(const std::string& name) {
    const fs::path home = scratch_ / name;
    for (const char* log : kLogs) WriteFile(home / ".ORBClient/logs" / log, name + " " + log + "\n");
    return home;
  }
  // Exit code of logmgr-cli with args; its standard output goes to table_, errors to errors_.
  int Run(std::vector<std::string> args) {
    std::string command = LOGMGR_CLI_PATH;
    for (const std::string& arg : args) command += " '" + arg + "'";
    return std::system((command + " >" + table_.string() + " 2>" + errors_.string()).c_str()) >> 8;
  }
  std::string Row(const std::string& host) const {
    const std::string table = ReadFile(table_);
    const size_t start = table.find("\n" + host + " ");
    return start == std::string::npos ? "" : table.substr(start + 1, table.find('\n', start + 1) - start - 1);
  }
  static std::string Tar(const std::string& options, const fs::path& archive, const std::string& member = "") {
    return RunAndCapture("tar " + options + " " + archive.string() + " " + member + " 2>&1");
  }

  TempDir scratch_;
  fs::path root_ = scratch_ / "root", out_ = scratch_ / "out", bin_ = scratch_ / "bin",
           table_ = scratch_ / "table", errors_ = scratch_ / "errors";
  ScopedEnv noX_{"DISPLAY", nullptr}, noWayland_{"WAYLAND_DISPLAY", nullptr};
};

// Equal to a local run means: the same members in the same order, and the same
// bytes in every client log. The system reports are made fresh on every run
// (times, process lists), so only their presence can be compared.
TEST_F(Hosts, GoodHostsArchivesArriveWholeAndEveryFailureIsReportedWithoutAFile) {
  SshdHosts servers;
  const std::string path = "PATH=" + bin_.string() + ":/usr/bin:/bin", orbroot = "ORBROOT=" + root_.string();
  for (const char* good : {"good1", "good2"})
    ASSERT_GT(servers.Start(good, {path, "HOME=" + ClientHome(good).string(), orbroot}), 0);
  WriteScript(scratch_ / "hangbin/logmgr-cli", "while echo waiting >&2; do sleep 0.2; done");
  ASSERT_GT(servers.Start("hang", {"PATH=" + (scratch_ / "hangbin").string() + ":/usr/bin:/bin"}), 0);
  const int missing = servers.Start("missing", {"PATH=/usr/bin:/bin", "HOME=" + ClientHome("missing").string()});
  ASSERT_GT(missing, 0);
  servers.AddAlias("stranger", missing, "stranger_key");
  servers.AddAlias("nothing", FreeLoopbackPort());
  WriteFile(scratch_ / "fleet", "# the room\ngood1\n\n  good2  # by the door\nnothing\nhang\nmissing\nstranger\n");

  EXPECT_EQ(Run({"hosts", "--hosts-file", (scratch_ / "fleet").string(), "-o", out_.string(), "--ssh-config",
                 servers.config().string(), "--timeout", "4", "--jobs", "3"}),
            1)
      << ReadFile(errors_);
  EXPECT_NE(Row("good1").find(" ok "), std::string::npos) << ReadFile(table_) << ReadFile(errors_);
  EXPECT_NE(Row("good2").find(" ok "), std::string::npos);
  EXPECT_NE(Row("nothing").find("unreachable"), std::string::npos) << ReadFile(table_);
  EXPECT_NE(Row("hang").find("timed out"), std::string::npos);
  EXPECT_NE(Row("missing").find("remote command missing"), std::string::npos);
  EXPECT_NE(Row("stranger").find("key refused"), std::string::npos);
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(out_)) files.push_back(entry.path().filename().string());
  std::sort(files.begin(), files.end());
  EXPECT_EQ(files, (std::vector<std::string>{"good1.tar.gz", "good2.tar.gz"}));

  ScopedEnv home("HOME", (scratch_ / "good2").c_str()), root("ORBROOT", root_.c_str());
  ASSERT_EQ(std::system((LOGMGR_CLI_PATH " existing -o - >" + (scratch_ / "local.tgz").string() + " 2>/dev/null").c_str()), 0);
  const std::string members = Tar("-tzf", scratch_ / "local.tgz");
  EXPECT_NE(members.find("Envdump.txt"), std::string::npos) << members;
  EXPECT_EQ(Tar("-tzf", out_ / "good2.tar.gz"), members);
  for (const char* log : kLogs) {
    EXPECT_EQ(Tar("-xOzf", out_ / "good2.tar.gz", log), Tar("-xOzf", scratch_ / "local.tgz", log));
    EXPECT_NE(Tar("-xOzf", out_ / "good1.tar.gz", log).find(std::string("good1 ") + log), std::string::npos);
  }
}

}  // namespace
