// logmgr-cli hosts against real sshd servers on 127.0.0.1, and against a
// stand-in ssh for what a server cannot be made to do on cue.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>
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

// A stand-in ssh: records its arguments and how many run at once, then plays
// the stream and exit code prepared for its host in $FAKE_SSH.
class FakeSsh : public Hosts {
 protected:
  FakeSsh() {
    WriteScript(fake_ / "ssh",
                "for a; do [ \"$prev\" = -- ] && host=$a; prev=$a; done; d=$FAKE_SSH\n"
                "echo \"$*\" >\"$d/$host.args\"; echo $$ >\"$d/$host.pid\"; mkdir \"$d/running.$host\"\n"
                "ls -d \"$d\"/running.* | wc -l >>\"$d/concurrency\"; sleep \"$(cat \"$d/$host.sleep\" 2>/dev/null || echo 0.3)\"\n"
                "cat \"$d/$host\"; rmdir \"$d/running.$host\"; exit \"$(cat \"$d/$host.rc\" 2>/dev/null || echo 0)\"");
    // A whole archive, and one whose tar lacks its closing blocks though its gzip is whole.
    RunAndCapture("cd " + fake_.string() + " && echo text >member && tar -czf whole.src member && tar -cf open.tar member"
                  " && truncate -s 1024 open.tar && gzip -c open.tar >open.src");
  }
  void Serve(const std::string& host, const std::string& stream, int code = 0, const char* sleep = nullptr) {
    fs::copy_file(fake_ / stream, fake_ / host);
    WriteFile(fake_ / (host + ".rc"), std::to_string(code));
    if (sleep != nullptr) WriteFile(fake_ / (host + ".sleep"), sleep);
  }
  int MaxConcurrency() const {
    int most = 0;
    std::istringstream counts(ReadFile(fake_ / "concurrency"));
    for (int count = 0; counts >> count;) most = std::max(most, count);
    return most;
  }

  fs::path fake_ = scratch_ / "fake";
  ScopedEnv path_{"PATH", (fake_.string() + ":" + getenv("PATH")).c_str()};
  ScopedEnv fakeDir_{"FAKE_SSH", fake_.c_str()};
};

TEST_F(FakeSsh, OnlyWholeArchivesOfASuccessfulCommandAreKeptAndJobsBoundTheFanOut) {
  Serve("a", "whole.src");
  Serve("b", "whole.src", 3);
  WriteFile(fake_ / "cut.src", ReadFile(fake_ / "whole.src").substr(0, 30));
  Serve("cut", "cut.src");
  Serve("open", "open.src");
  Serve("e", "whole.src");
  EXPECT_EQ(Run({"hosts", "a", "b", "cut", "open", "e", "-o", out_.string(), "--jobs", "2", "--mask",
                 "--ssh-config", "cfg file", "--ssh-option", "Port=2222", "--ssh-option", "User=x"}),
            1);
  EXPECT_EQ(ReadFile(fake_ / "a.args"),
            "-o BatchMode=yes -F cfg file -o Port=2222 -o User=x -- a logmgr-cli existing -o - --mask\n");
  EXPECT_EQ(MaxConcurrency(), 2);
  EXPECT_NE(Row("a").find(" ok "), std::string::npos) << ReadFile(table_);
  EXPECT_NE(Row("b").find("remote exit code 3"), std::string::npos);
  EXPECT_NE(Row("cut").find("incomplete archive"), std::string::npos);
  EXPECT_NE(Row("open").find("incomplete archive"), std::string::npos);
  EXPECT_EQ(ReadFile(out_ / "a.tar.gz"), ReadFile(fake_ / "whole.src"));
  EXPECT_TRUE(fs::exists(out_ / "e.tar.gz"));
  EXPECT_EQ(std::distance(fs::directory_iterator(out_), fs::directory_iterator()), 2);
  EXPECT_EQ(ReadFile(errors_).find_first_of("\r\033"), std::string::npos) << "progress into a file";

  EXPECT_EQ(Run({"hosts", "a", "-o", out_.string()}), 0);
  EXPECT_EQ(Run({"hosts", "-o", out_.string(), "--", "a", "-oProxyCommand=touch x"}), 64);
  EXPECT_EQ(Run({"hosts", "-o", out_.string()}), 64);
  EXPECT_EQ(Run({"hosts", "../a", "-o", out_.string()}), 64);
}

TEST_F(FakeSsh, InterruptEndsEverySshAndLeavesNoPartialFile) {
  Serve("a", "whole.src", 0, "0");
  Serve("slow1", "whole.src", 0, "30");
  Serve("slow2", "whole.src", 0, "30");
  const pid_t run = StartProgram({LOGMGR_CLI_PATH, "hosts", "a", "slow1", "slow2", "-o", out_.string()}, table_.c_str());
  ASSERT_TRUE(WaitUntil([&] { return fs::exists(fake_ / "slow2.pid") && fs::exists(out_ / "a.tar.gz"); }, 10));
  for (const auto& entry : fs::directory_iterator(out_))
    EXPECT_TRUE(entry.path().filename() == "a.tar.gz" || entry.path().string().find(".tar") == std::string::npos)
        << entry.path() << " looks like an archive while it is still coming";
  kill(run, SIGINT);
  EXPECT_EQ(ExitCodeOf(run, 10), 1);
  for (const char* host : {"slow1", "slow2"})
    EXPECT_NE(kill(std::stoi(ReadFile(fake_ / (std::string(host) + ".pid"))), 0), 0) << host << " still runs";
  EXPECT_NE(Row("slow1").find("stopped"), std::string::npos) << ReadFile(table_);
  EXPECT_EQ(std::distance(fs::directory_iterator(out_), fs::directory_iterator()), 1);
}

}  // namespace
