// The real logd run by root for every user, in a private mount namespace whose
// /var/log is a tmpfs, against the second user "nobody" logging through the library.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "logclient/logd_process.h"

namespace {

namespace fs = std::filesystem;
using logclient_test::Holds;
using logclient_test::LogdProcess;
using testsupport::ReadFile;

constexpr uid_t kNobody = 65534;
const fs::path kUser = "/var/log/users/nobody", kLogs = kUser / ".ORBClient/logs", kIssue = kLogs / "issuereproduce";
const fs::path kDefault = "/var/log/norvex/ORBClient.log";

// A client program of nobody's: points the shared area at path and logs each text.
void AsNobody(const fs::path& path, const std::vector<std::string>& texts) {
  EXPECT_EQ(testsupport::RunForked([&] {
    ASSERT_TRUE(setgid(kNobody) == 0 && setuid(kNobody) == 0);
    setenv("HOME", kUser.c_str(), 1);
    ASSERT_EQ(log_client_init(), 1);
    ASSERT_EQ(log_set_shared_path(path.c_str()), 1);
    for (const std::string& text : texts) log_write_class(0, LOG_LEVEL_AOL, "test", "root", 0, "%s", text.c_str());
    log_client_shutdown();
  }), 0);
}

void MakePrivateVarLog() {
  ASSERT_EQ(unshare(CLONE_NEWNS), 0);
  ASSERT_EQ(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr), 0);
  ASSERT_EQ(mount("tmpfs", "/var/log", "tmpfs", 0, "mode=0755"), 0);
  fs::create_directories("/var/log/norvex");
  fs::create_directories(kIssue);
  // Two pages: one for a filler, one for lines until the disk is full.
  ASSERT_EQ(mount("tmpfs", kIssue.c_str(), "tmpfs", 0, "size=8k,uid=65534,gid=65534,mode=0755"), 0);
  for (const fs::path& folder : {kUser, kUser / ".ORBClient", kLogs}) ASSERT_EQ(chown(folder.c_str(), kNobody, kNobody), 0);
  testsupport::WriteFile("/var/log/rootonly", "root only\n", 0600);
  fs::create_symlink("/var/log/rootonly", kLogs / "evil.log");
  ASSERT_EQ(lchown((kLogs / "evil.log").c_str(), kNobody, kNobody), 0);
}

TEST(LogdAsRoot, ServesEveryUserWithTheirOwnRightsAndKeepsWholeLinesOnAFullDisk) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root: a private /var/log and a second user to log as";
  EXPECT_EQ(testsupport::RunForked([] {
    MakePrivateVarLog();
    if (testing::Test::HasFatalFailure()) return;
    LogdProcess logd("/var/log/roothome", {LOGD_PATH}, "/var/log/norvex/.nvxndclogsocket");
    ASSERT_TRUE(logd.listening()) << logd.Errors();
    struct stat info {};
    EXPECT_TRUE(stat("/var/log/norvex/.nvxndclogsocket", &info) == 0 && (info.st_mode & 0777) == 0666);

    AsNobody(kLogs / "ORBClient.log", {"into my folder"});
    ASSERT_TRUE(Holds(kLogs / "ORBClient.log", " uid=65534 tid=")) << logd.Errors();
    EXPECT_TRUE(stat((kLogs / "ORBClient.log").c_str(), &info) == 0 && info.st_uid == kNobody);
    AsNobody(kLogs / "evil.log", {"through a link"});
    AsNobody("/var/log/elsewhere.log", {"outside the folders"});
    EXPECT_TRUE(Holds(kDefault, "outside the folders")) << logd.Errors();
    EXPECT_TRUE(Holds(kDefault, "through a link"));
    EXPECT_EQ(ReadFile("/var/log/rootonly"), "root only\n");
    EXPECT_FALSE(fs::exists("/var/log/elsewhere.log"));

    testsupport::WriteFile(kIssue / "filler", std::string(4096, 'f'));
    AsNobody(kIssue / "ORBClient.log", std::vector<std::string>(60, "full " + std::string(100, 'x')));
    ASSERT_TRUE(Holds("/var/log/roothome/logd.err", "dropping whole lines")) << logd.Errors();
    const std::string full = ReadFile(kIssue / "ORBClient.log");
    // Every line is as long as the first, so whole lines fill the file exactly.
    EXPECT_TRUE(!full.empty() && full.back() == '\n' && full.size() % (full.find('\n') + 1) == 0) << full.size();
    fs::remove(kIssue / "filler");
    AsNobody(kIssue / "ORBClient.log", {"room again"});
    EXPECT_TRUE(Holds(kIssue / "ORBClient.log", "room again")) << logd.Errors();
    EXPECT_NE(logd.Errors().find("again; "), std::string::npos) << logd.Errors();
    EXPECT_EQ(logd.Errors().find("dropping whole lines"), logd.Errors().rfind("dropping whole lines"));
  }), 0);
}

}  // namespace
