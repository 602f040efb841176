// logmgr-cli hosts against real sshd servers on 127.0.0.1, and against a
// stand-in ssh for what a server cannot be made to do on cue.
#include <gtest/gtest.h>
#include <signal.h>

#include <string>

#include "cli/cli_fixture.h"
#include "support/sshd.h"

namespace {

namespace fs = std::filesystem;
using namespace testsupport;

const char* const kLogs[] = {"kvlog.1", "userActivitylog.latest", "KeywardSvr.latest", "ORBClient.log"};

// The command's scene, plus a folder for the archives and a PATH holding logmgr-cli.
class Hosts : public clitest::Cli {
 protected:
  Hosts() {
    for (const fs::path& folder : {out_, bin_}) fs::create_directories(folder);
    fs::create_symlink(LOGMGR_CLI_PATH, bin_ / "logmgr-cli");
  }
  // A thin client's home with its logs, each text naming the client.
  fs::path ClientHome(const std::string& name) {
    for (const char* log : kLogs) WriteFile(scratch_ / name / ".ORBClient/logs" / log, name + " " + log + "\n");
    return scratch_ / name;
  }
  // Exit code of logmgr-cli with args; its standard output goes to table_, errors to errors_.
  int Run(std::vector<std::string> args) {
    std::string command = "timeout 30 " LOGMGR_CLI_PATH;  // a run that never ends fails instead
    for (const std::string& arg : args) command += " '" + arg + "'";
    return std::system((command + " >" + table_.string() + " 2>" + errors_.string()).c_str()) >> 8;
  }
  // The host's line of the table, from the result on.
  std::string Result(const std::string& host) const {
    return RunAndCapture("awk '$1 == \"" + host + "\" { $1 = \"\"; print }' " + table_.string());
  }
  std::string Files() const { return RunAndCapture("ls -A " + out_.string()); }
  static std::string Tar(const std::string& options, const fs::path& archive, const std::string& member = "") {
    return RunAndCapture("tar " + options + " " + archive.string() + " " + member + " 2>&1");
  }

  fs::path out_ = scratch_ / "out", bin_ = scratch_ / "bin", table_ = scratch_ / "table", errors_ = scratch_ / "errors";
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
  const int missing = servers.Start("missing", {"PATH=" + (scratch_ / "nowhere").string()});
  ASSERT_GT(missing, 0);
  servers.AddAlias("stranger", missing, "stranger_key");
  servers.AddAlias("nothing", FreeLoopbackPort());
  WriteFile(scratch_ / "fleet", "# the room\ngood1\n\n  good2  # by the door\nnothing\nhang\nmissing\nstranger\n");

  EXPECT_EQ(Run({"hosts", "--hosts-file", (scratch_ / "fleet").string(), "-o", out_.string(), "--ssh-config",
                 servers.config().string(), "--timeout", "10", "--jobs", "3"}),
            1);
  for (const auto& [host, result] : std::map<std::string, std::string>{
           {"good1", "ok"}, {"good2", "ok"}, {"nothing", "unreachable"}, {"hang", "timed out"},
           {"missing", "remote command missing"}, {"stranger", "key refused"}})
    EXPECT_EQ(Result(host).find(" " + result + " "), 0u) << ReadFile(table_) << ReadFile(errors_);
  EXPECT_EQ(Files(), "good1.tar.gz\ngood2.tar.gz\n");

  ScopedEnv home("HOME", (scratch_ / "good2").c_str()), root("ORBROOT", root_.c_str());
  ASSERT_EQ(std::system(LOGMGR_CLI_PATH " existing -o - >local.tgz 2>/dev/null"), 0);
  const std::string members = Tar("-tzf", "local.tgz");
  EXPECT_NE(members.find("Envdump.txt"), std::string::npos) << members;
  EXPECT_EQ(Tar("-tzf", out_ / "good2.tar.gz"), members);
  for (const char* log : kLogs) {
    EXPECT_EQ(Tar("-xOzf", out_ / "good2.tar.gz", log), Tar("-xOzf", "local.tgz", log));
    EXPECT_NE(Tar("-xOzf", out_ / "good1.tar.gz", log).find(std::string("good1 ") + log), std::string::npos);
  }
  fs::remove("local.tgz");
}

// A stand-in ssh: records its arguments and how many run at once, then plays
// the stream and exit code prepared for its host.
class FakeSsh : public Hosts {
 protected:
  FakeSsh() {
    WriteScript(bin_ / "ssh", "for a; do [ \"$prev\" = -- ] && host=$a; prev=$a; done; cd " + bin_.string() +
                                  "\necho \"$*\" >$host.args; echo $$ >$host.pid; mkdir running.$host\n"
                                  "ls -d running.* | wc -l >>concurrency; sleep $(cat $host.sleep || echo 0.3)\n"
                                  "cat $host.src; rmdir running.$host; exit $(cat $host.rc || echo 0)");
    // A whole archive, and one whose tar lacks its closing blocks though its gzip is whole.
    RunAndCapture("cd " + bin_.string() + " && echo text >member && tar -czf whole member && tar -cf open.tar member"
                  " && truncate -s 1024 open.tar && gzip -c open.tar >open");
  }
  void Serve(const std::string& host, const std::string& stream, int code = 0, const char* sleep = "0.3") {
    WriteFile(bin_ / (host + ".src"), ReadFile(bin_ / stream).substr(0, host == "cut" ? 30 : std::string::npos));
    WriteFile(bin_ / (host + ".rc"), std::to_string(code));
    WriteFile(bin_ / (host + ".sleep"), sleep);
  }
  ScopedEnv path_{"PATH", (bin_.string() + ":" + getenv("PATH")).c_str()};
};

TEST_F(FakeSsh, OnlyWholeArchivesOfASuccessfulCommandAreKeptJobsBoundTheFanOutAndCtrlCLeavesNothing) {
  for (const char* host : {"a", "cut", "e"}) Serve(host, "whole");
  Serve("b", "whole", 3);
  Serve("open", "open");
  EXPECT_EQ(Run({"hosts", "a", "b", "cut", "open", "e", "-o", out_.string(), "--jobs", "2", "--mask",
                 "--ssh-config", "cfg file", "--ssh-option", "Port=2222", "--ssh-option", "User=x"}),
            1);
  EXPECT_EQ(ReadFile(bin_ / "a.args"),
            "-o BatchMode=yes -F cfg file -o Port=2222 -o User=x -- a logmgr-cli existing -o - --mask\n");
  EXPECT_EQ(RunAndCapture("sort -n " + (bin_ / "concurrency").string() + " | tail -1"), "2\n");
  EXPECT_EQ(Result("b").find(" remote exit code 3 "), 0u) << ReadFile(table_);
  EXPECT_EQ(Result("cut").find(" incomplete archive "), 0u);
  EXPECT_EQ(Result("open").find(" incomplete archive "), 0u);
  EXPECT_EQ(ReadFile(out_ / "a.tar.gz"), ReadFile(bin_ / "whole"));
  EXPECT_EQ(Files(), "a.tar.gz\ne.tar.gz\n");
  EXPECT_EQ(ReadFile(errors_).find_first_of("\r\033"), std::string::npos) << "progress into a file";

  EXPECT_EQ(Run({"hosts", "a", "-o", out_.string()}), 0);
  EXPECT_EQ(Run({"hosts", "-o", out_.string(), "--", "a", "-oProxyCommand=x"}), 64);
  EXPECT_EQ(Run({"hosts", "-o", out_.string()}), 64);

  // Ctrl-C in the middle: every ssh ended, no partial file.
  Serve("slow1", "whole", 0, "30");
  Serve("slow2", "whole", 0, "30");
  fs::remove(out_ / "e.tar.gz");
  const pid_t run = StartProgram({LOGMGR_CLI_PATH, "hosts", "slow1", "slow2", "-o", out_.string()}, table_.c_str());
  ASSERT_TRUE(WaitUntil([&] { return fs::exists(bin_ / "slow2.pid"); }, 10));
  EXPECT_EQ(RunAndCapture("ls -A " + out_.string() + " | grep -c tar"), "1\n") << "a partial name like an archive";
  kill(run, SIGINT);
  EXPECT_EQ(ExitCodeOf(run, 10), 1);
  for (const char* host : {"slow1", "slow2"})
    EXPECT_NE(kill(std::stoi(ReadFile(bin_ / (std::string(host) + ".pid"))), 0), 0) << host << " still runs";
  EXPECT_EQ(Result("slow1").find(" stopped "), 0u) << ReadFile(table_);
  EXPECT_EQ(Files(), "a.tar.gz\n");
}

}  // namespace
