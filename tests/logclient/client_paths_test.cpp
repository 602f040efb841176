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
using testsupport::ScopedEnv;
using testsupport::TempDir;
using testsupport::WriteFile;

void MakeClientRoot(const fs::path& root) {
  WriteFile(root / "libproxy.so", "");
  WriteFile(root / "gtk/glade/main.glade", "<interface/>");
}

TEST(ClientPaths, UnprivilegedUserGetsPerUserPaths) {
  // As nobody, a /var/log/norvex/ (if the machine has one) belongs to someone
  // else, and no logd listens in this test: per-user mode either way.
  TempDir home;
  ASSERT_EQ(0, chown(home.str().c_str(), testsupport::NobodyUid(), testsupport::NobodyGid()));
  int result = testsupport::RunAsNobody([&] {
    setenv("HOME", home.str().c_str(), 1);
    if (log_system_wide_mode()) return 1;
    if (log_config_file_path() != home.str() + "//.ORBClient/.nvxndclogconf") return 2;
    if (log_socket_path() != home.str() + "//.ORBClient/.nvxndclogsocket") return 3;
    if (!fs::is_directory(home.str() + "/.ORBClient/logs")) return 4;
    return 0;
  });
  EXPECT_EQ(0, result);
}

TEST(ClientPaths, UserPathIsEmptyWhenTheClientFolderCannotBeMade) {
  TempDir scratch;
  WriteFile(scratch / "home", "");
  EXPECT_FORKED_PASS((scratch / "home").string(), [] {
    char* path = user_path("/.ORBClient/x");
    ASSERT_NE(nullptr, path);
    EXPECT_STREQ("", path);
    free(path);
    EXPECT_STREQ("", log_socket_path());
  });
}

TEST(ClientPaths, MkdirPCreatesMissingParents) {
  TempDir scratch;
  std::string nested = scratch.str() + "/a/b/c/";
  EXPECT_EQ(1, mkdir_p(nested.c_str(), 0755));
  EXPECT_TRUE(fs::is_directory(scratch / "a/b/c"));
  EXPECT_EQ(1, mkdir_p(nested.c_str(), 0755)) << "existing folders are fine";
  WriteFile(scratch / "file", "");
  EXPECT_EQ(0, mkdir_p((scratch.str() + "/file/sub/dir").c_str(), 0755));
  EXPECT_EQ(0, mkdir_p("", 0755));
}

TEST(ClientPaths, RecentMeansModifiedWithinADay) {
  TempDir scratch;
  fs::path file = scratch / "ORBClient.log";
  WriteFile(file, "x");
  EXPECT_EQ(1, file_is_recent(file.c_str()));
  timespec times[2] = {{time(nullptr) - 86400 - 60, 0}, {time(nullptr) - 86400 - 60, 0}};
  ASSERT_EQ(0, utimensat(AT_FDCWD, file.c_str(), times, 0));
  EXPECT_EQ(0, file_is_recent(file.c_str()));
  EXPECT_EQ(0, file_is_recent((scratch / "missing").c_str()));
}

TEST(InstallRoot, NeedsBothMarkerFiles) {
  TempDir root;
  WriteFile(root / "libproxy.so", "");
  EXPECT_EQ(0, is_client_install_root(root.str().c_str()));
  MakeClientRoot(root.path());
  EXPECT_EQ(1, is_client_install_root(root.str().c_str()));
  EXPECT_EQ(0, is_client_install_root(nullptr));
}

TEST(InstallRoot, FoundFromTheUtilFolderOnly) {
  TempDir root;
  MakeClientRoot(root.path());
  for (const char* folder : {"util", "bin"}) {
    fs::create_directories(root / folder);
    fs::copy_file(LOGCLIENT_PROBE_PATH, root / folder / "probe");
  }
  ScopedEnv noRoot("ORBROOT", nullptr);
  EXPECT_EQ(root.str(), testsupport::RunAndCapture((root / "util/probe").string() + " root"));
  EXPECT_NE(root.str(), testsupport::RunAndCapture((root / "bin/probe").string() + " root"));
}

TEST(InstallRoot, VersionComesFromTheFirstIdVersionLine) {
  TempDir root;
  MakeClientRoot(root.path());
  WriteFile(root / "pkginf/Ver.core.linuxx64", "NAME=client\nID_VERSION=1.2.3\nID_VERSION=9\n");
  EXPECT_FORKED_PASS("", [&] {
    setenv("ORBROOT", root.str().c_str(), 1);
    EXPECT_EQ(root.str(), client_install_root());
    EXPECT_STREQ("1.2.3", client_installed_version());
  });
  WriteFile(root / "pkginf/Ver.core.linuxx64", "ID_VERSION=" + std::string(40, '7'));
  EXPECT_FORKED_PASS("", [&] {
    setenv("ORBROOT", root.str().c_str(), 1);
    EXPECT_EQ(std::string(31, '7'), client_installed_version());
  });
  fs::remove(root / "pkginf/Ver.core.linuxx64");
  EXPECT_FORKED_PASS("", [&] {
    setenv("ORBROOT", root.str().c_str(), 1);
    EXPECT_STREQ("unknown", client_installed_version());
  });
}

}  // namespace
