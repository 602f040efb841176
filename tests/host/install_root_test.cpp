#include "host/install_root.h"

#include <gtest/gtest.h>

#include "support/fake_root.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace fs = std::filesystem;
using testsupport::MakeFakeInstallRoot;
using testsupport::ScopedEnv;
using testsupport::TempDir;

TEST(InstallRootCheck, NeedsAllFourNamesAndFollowsLinks) {
  TempDir dir;
  EXPECT_FALSE(IsValidInstallRoot(""));
  for (const char* missing : {"KeywardDaemon", "SvcLedger", "PrimaryKeyward", "util/shelfscan"}) {
    fs::path root = dir / missing;
    MakeFakeInstallRoot(root);
    EXPECT_TRUE(IsValidInstallRoot(root.string()));
    fs::remove(root / missing);
    fs::create_symlink(dir / "gone", root / missing);
    EXPECT_FALSE(IsValidInstallRoot(root.string())) << "dangling " << missing;
  }
}

// The program's own folder is a candidate, so each case copies the probe
// into a folder and runs it from there; the answer is its whole output.
class InstallRootSearch : public ::testing::Test {
 protected:
  std::string RunFrom(const fs::path& folder) {
    fs::create_directories(folder);
    fs::copy_file(HOST_PROBE_PATH, folder / "host_probe", fs::copy_options::overwrite_existing);
    return testsupport::RunAndCapture((folder / "host_probe").string() + " root 2>&1");
  }
  TempDir dir;
  ScopedEnv home{"HOME", dir.str().c_str()};
  ScopedEnv orbRoot{"ORBROOT", nullptr};
  fs::path homeRoot = dir / "ORBClient" / PlatformFolderName();
};

TEST_F(InstallRootSearch, NoCandidatePrintsOneLinePerCall) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(FindInstallRoot(), "");
  EXPECT_EQ(FindInstallRoot(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "No valid ORBROOT directory found\nNo valid ORBROOT directory found\n");
}

TEST_F(InstallRootSearch, OrbRootFirstThenProgramFolder) {
  MakeFakeInstallRoot(dir / "installed");
  MakeFakeInstallRoot(dir / "fromEnv");
  ScopedEnv env("ORBROOT", (dir / "fromEnv").c_str());
  EXPECT_EQ(RunFrom(dir / "installed"), (dir / "fromEnv").string() + "\n");
  fs::remove(dir / "fromEnv/util/shelfscan");
  EXPECT_EQ(RunFrom(dir / "installed"), (dir / "installed").string() + "\n");
}

TEST_F(InstallRootSearch, OnlyAFolderNamedUtilIsSteppedOverAndOnlyToAValidParent) {
  MakeFakeInstallRoot(dir / "installed");
  EXPECT_EQ(RunFrom(dir / "installed/util"), (dir / "installed").string() + "\n");
  EXPECT_EQ(RunFrom(dir / "notaroot/util"), "No valid ORBROOT directory found\n\n");
  MakeFakeInstallRoot(homeRoot);
  for (const char* folder : {"installed/utils", "installed/xutil", "notaroot/util"})
    EXPECT_EQ(RunFrom(dir / folder), homeRoot.string() + "\n") << folder;
}
