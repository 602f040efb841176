// logmgr-cli as support runs it over ssh: a subprocess without a display, on a
// scratch home and a fake client install root.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "app/app.h"
#include "cli/cli_fixture.h"
#include "logclient/logclient.h"

namespace {

using namespace clitest;

TEST_F(Cli, ExistingWritesTheWindowFlowsMembersToAFileOrAloneIntoAPipe) {
  App window;
  ASSERT_EQ(window.ArchiveExistingLogs(), 0);
  const std::string members = Members(window.existingArchive);
  EXPECT_EQ(members.substr(0, 18), "KeywardSvr.latest\n") << members;

  EXPECT_EQ(Run({"existing", "-o", Out("file.tgz")}), 0) << ReadFile(output_);
  EXPECT_EQ(Members(Out("file.tgz")), members);
  EXPECT_FALSE(fs::exists(issue_ / "ORBClient.log")) << "the staged copy stays behind";
  EXPECT_EQ(ReadFile(output_).find_first_of("\r\033"), std::string::npos) << "progress into a file";

  // A tool that talks on standard output must not get into the archive stream.
  WriteScript(scratch_ / "bin/cp", "echo chatty cp; exec /bin/cp \"$@\"");
  ScopedEnv path("PATH", (scratch_.str() + "/bin:" + getenv("PATH")).c_str());
  const std::string piped = scratch_.str() + "/piped.tgz";
  RunAndCapture("{ " LOGMGR_CLI_PATH " existing -o - 2>" + output_.string() + "; echo $? >" + piped +
                ".rc; } | cat >" + piped);
  EXPECT_EQ(ReadFile(piped + ".rc"), "0\n");
  EXPECT_EQ(RunAndCapture("gzip -t " + piped + " 2>&1 && echo valid"), "valid\n");
  EXPECT_EQ(Members(piped), members);
  EXPECT_NE(ReadFile(output_).find("chatty cp"), std::string::npos);
}

// Every path with its size and time, and the lock folder's content.
std::string Snapshot(const fs::path& home) {
  return RunAndCapture("cd " + home.string() + " && find . -printf '%p %s %T@\\n' | LC_ALL=C sort");
}

TEST_F(Cli, ListPrintsPathsAndSizesAndChangesNothing) {
  const std::string before = Snapshot(home_);
  EXPECT_EQ(Run({"existing", "--list"}), 0);
  EXPECT_EQ(Run({"reproduce", "--list"}), 0);
  EXPECT_EQ(Run({"existing", "--lst"}), 64);
  EXPECT_EQ(Snapshot(home_), before);
  const std::string listed = ReadFile(output_);
  EXPECT_NE(listed.find((logs_ / "kvlog.1").string() + " 8\n"), std::string::npos) << listed;
  EXPECT_NE(listed.find((logs_ / "Envdump.txt").string() + " -\n"), std::string::npos) << listed;
}

class Reproduce : public Cli {
 protected:
  void SetUp() override {
    if (log_system_wide_mode()) GTEST_SKIP() << "the client's log area is system-wide here; a run would change it";
  }
  // The levels of every class, as one text, and the client's log path; read in a forked body.
  static std::string Levels() {
    std::string levels;
    for (int c = 0; c < LOG_CLASS_COUNT; ++c) levels += std::to_string(log_get_class_level(c));
    return levels;
  }
  static std::string SharedPath() { return std::string(log_get_shared_path(), 0, 256).c_str(); }
  bool Raised() const {
    return Levels() == std::string(LOG_CLASS_COUNT, '1') && SharedPath() == (issue_ / "ORBClient.log").string();
  }
  void RunInTurns();  // in a forked body: it maps the area and changes the process group
  void ExpectRestored() const {
    EXPECT_EQ(Levels(), std::string(LOG_CLASS_COUNT, '4'));
    EXPECT_EQ(SharedPath(), (logs_ / "ORBClient.log").string());
    EXPECT_FALSE(fs::exists(home_ / ".ORBClient/.kvlogEnabled"));
  }
};

// Ended by its time, refused, ended by a dropped session, and by Ctrl-C held down.
void Reproduce::RunInTurns() {
  ASSERT_EQ(log_config_open(), 1);
  for (int c = 0; c < LOG_CLASS_COUNT; ++c) log_set_class_level(c, 4);
  const pid_t run = StartProgram({LOGMGR_CLI_PATH, "reproduce", "--for", "2", "-o", Out("run.tgz")});
  EXPECT_TRUE(WaitUntil([&] { return Raised() && fs::exists(home_ / ".ORBClient/.kvlogEnabled"); }));
  EXPECT_EQ(ExitCodeOf(run), 0);
  ExpectRestored();
  EXPECT_NE(Members(Out("run.tgz")).find("UserSystemInfo.txt\n"), std::string::npos);

  // The logs of a run that was never saved: without --yes nothing is touched.
  WriteFile(issue_ / "ORBClient.log", "earlier run\n");
  EXPECT_EQ(Run({"reproduce"}), 3);
  EXPECT_NE(ReadFile(output_).find("--yes"), std::string::npos) << ReadFile(output_);
  EXPECT_FALSE(fs::exists(home_ / ".ORBClient/.kvlogEnabled"));

  // A dropped ssh session, then an impatient Ctrl-C while it puts things back.
  const pid_t dropped = StartProgram({LOGMGR_CLI_PATH, "reproduce", "--yes", "-o", Out("hup.tgz")});
  EXPECT_TRUE(WaitUntil([&] { return Raised(); }));
  kill(dropped, SIGHUP), kill(dropped, SIGINT);
  EXPECT_EQ(ExitCodeOf(dropped), 0);
  ExpectRestored();

  // Ctrl-C held down: the terminal signals the whole group, the stop's tools included.
  signal(SIGINT, [](int) {});
  setpgid(0, 0);
  const pid_t pressed = StartProgram({LOGMGR_CLI_PATH, "reproduce", "--yes", "-o", Out("int.tgz")});
  EXPECT_TRUE(WaitUntil([&] { return Raised(); }));
  int status = 0;
  for (; waitpid(pressed, &status, WNOHANG) == 0; usleep(200)) kill(0, SIGINT);
  EXPECT_EQ(status, 0);
  EXPECT_NE(Members(Out("int.tgz")).find("UserSystemInfo.txt\n"), std::string::npos);
  ExpectRestored();
}

TEST_F(Reproduce, RaisesEveryClassWhileItWaitsAndPutsAllBackAfterItsTimeASighupOrCtrlC) {
  EXPECT_EQ(RunForked([&] { RunInTurns(); }), 0);
}

TEST_F(Reproduce, ASecondInstanceBesideTheWindowOrAnotherCommandIsRefusedWith4) {
  const pid_t run = StartProgram({LOGMGR_CLI_PATH, "reproduce", "--yes", "-o", Out("r.tgz")});
  ASSERT_TRUE(WaitUntil([&] { return fs::exists(home_ / ".ORBClient/.kvlogEnabled"); }));
  EXPECT_EQ(Run({"existing"}), 4);
  kill(run, SIGTERM);
  EXPECT_EQ(ExitCodeOf(run), 0);

  // A live program named logmgr in the window's lock.
  fs::copy_file("/bin/sleep", scratch_ / "logmgr");
  const pid_t window = StartProgram({(scratch_ / "logmgr").string(), "30"});
  const std::string commandLine = "/proc/" + std::to_string(window) + "/cmdline";
  ASSERT_TRUE(WaitUntil([&] { return ReadFile(commandLine).find("30") != std::string::npos; }));
  WriteFile(home_ / ".ORBClient/.tmp/.logmgr.lock", Bytes(window));
  EXPECT_EQ(Run({"existing", "-o", Out("e.tgz")}), 4);
  EXPECT_NE(ReadFile(output_).find("(logmgr) is running"), std::string::npos) << ReadFile(output_);
  kill(window, SIGKILL);
  ExitCodeOf(window);
  EXPECT_EQ(Run({"existing", "-o", Out("e.tgz")}), 0) << "a dead owner holds nothing";
  WriteFile(home_ / ".ORBClient/.tmp/.logmgr.lock", Bytes(getpid()));
  EXPECT_EQ(Run({"existing", "-o", Out("e.tgz")}), 0) << "a live program that is not logmgr";
}

}  // namespace
