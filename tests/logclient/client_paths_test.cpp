// Per-user paths, folder creation, install root and version lookups.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "forked.h"
#include "logclient/logclient.h"
#include "support/files.h"
#include "support/privileges.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using testsupport::TempDir;
using testsupport::WriteFile;

TEST(ClientPaths, UnprivilegedUserGetsPerUserPaths) {
  // As nobody, a /var/log/norvex/ (if the machine has one) belongs to someone
  // else, and no logd listens in this test: per-user mode either way.
  TempDir home;
  ASSERT_EQ(0, chown(home.str().c_str(), testsupport::NobodyUid(), testsupport::NobodyGid()));
  EXPECT_EQ(0, testsupport::RunAsNobody([&] {
    setenv("HOME", home.str().c_str(), 1);
    if (log_system_wide_mode()) return 1;
    if (log_config_file_path() != home.str() + "//.ORBClient/.nvxndclogconf") return 2;
    if (log_socket_path() != home.str() + "//.ORBClient/.nvxndclogsocket") return 3;
    return fs::is_directory(home.str() + "/.ORBClient/logs") ? 0 : 4;
  }));
}

TEST(ClientPaths, FoldersAreMadeWithTheirParentsOrTheUserPathIsEmpty) {
  TempDir scratch;
  EXPECT_EQ(1, mkdir_p((scratch.str() + "/a/b/c/").c_str(), 0755));
  EXPECT_TRUE(fs::is_directory(scratch / "a/b/c"));
  EXPECT_EQ(1, mkdir_p((scratch.str() + "/a/b/c/").c_str(), 0755)) << "existing folders are fine";
  WriteFile(scratch / "file", "");
  EXPECT_EQ(0, mkdir_p((scratch.str() + "/file/sub/dir").c_str(), 0755));
  EXPECT_EQ(0, mkdir_p("", 0755));
  // A HOME that is a plain file: the client folder cannot be made.
  EXPECT_FORKED_PASS((scratch / "file").string(), [] {
    char* path = user_path("/.ORBClient/x");
    ASSERT_NE(nullptr, path);
    EXPECT_STREQ("", path);
    free(path);
    EXPECT_STREQ("", log_socket_path());
  });
}

TEST(ClientPaths, RecentMeansModifiedWithinADay) {
  TempDir scratch;
  WriteFile(scratch / "log", "x");
  EXPECT_EQ(1, file_is_recent((scratch / "log").c_str()));
  timespec times[2] = {{time(nullptr) - 86400 - 60, 0}, {time(nullptr) - 86400 - 60, 0}};
  ASSERT_EQ(0, utimensat(AT_FDCWD, (scratch / "log").c_str(), times, 0));
  EXPECT_EQ(0, file_is_recent((scratch / "log").c_str()));
  EXPECT_EQ(0, file_is_recent((scratch / "missing").c_str()));
}

TEST(InstallRoot, NeedsBothMarkersAndIsFoundFromTheUtilFolderOnly) {
  TempDir root;
  WriteFile(root / "libproxy.so", "");
  EXPECT_EQ(0, is_client_install_root(root.str().c_str()));
  WriteFile(root / "gtk/glade/main.glade", "<interface/>");
  EXPECT_EQ(1, is_client_install_root(root.str().c_str()));
  EXPECT_EQ(0, is_client_install_root(nullptr));
  for (const char* folder : {"util", "bin"}) {
    fs::create_directories(root / folder);
    fs::copy_file(LOGCLIENT_PROBE_PATH, root / folder / "probe");
  }
  testsupport::ScopedEnv noRoot("ORBROOT", nullptr);
  EXPECT_EQ(root.str(), testsupport::RunAndCapture((root / "util/probe").string() + " root"));
  EXPECT_NE(root.str(), testsupport::RunAndCapture((root / "bin/probe").string() + " root"));
}

TEST(InstallRoot, VersionComesFromTheFirstIdVersionLine) {
  TempDir root;
  WriteFile(root / "libproxy.so", "");
  WriteFile(root / "gtk/glade/main.glade", "<interface/>");
  testsupport::ScopedEnv orbRoot("ORBROOT", root.str().c_str());
  using Case = std::pair<std::string, std::string>;  // file content, version
  for (auto [content, version] : {Case{"N=c\nID_VERSION=1.2.3\nID_VERSION=9\n", "1.2.3"},
                                  Case{"ID_VERSION=" + std::string(40, '7'), std::string(31, '7')},
                                  Case{"", "unknown"}}) {
    fs::remove(root / "pkginf/Ver.core.linuxx64");
    if (!content.empty()) WriteFile(root / "pkginf/Ver.core.linuxx64", content);
    EXPECT_FORKED_PASS("", [&] {
      EXPECT_EQ(root.str(), client_install_root());
      EXPECT_EQ(version, client_installed_version());
    });
  }
}

}  // namespace
