#include "host/install_root.h"

#include <gtest/gtest.h>

#include "probe_process.h"
#include "support/fake_root.h"
#include "support/temp_dir.h"

namespace fs = std::filesystem;
using testsupport::MakeFakeInstallRoot;
using testsupport::ScopedEnv;
using testsupport::TempDir;

TEST(InstallRootCheck, NeedsAllFourClientExecutables) {
  TempDir dir;
  EXPECT_FALSE(IsValidInstallRoot(""));
  for (const char* missing : {"KeywardDaemon", "SvcLedger", "PrimaryKeyward", "util/shelfscan"}) {
    fs::path root = dir / missing;
    MakeFakeInstallRoot(root);
    EXPECT_TRUE(IsValidInstallRoot(root.string()));
    fs::remove(root / missing);
    EXPECT_FALSE(IsValidInstallRoot(root.string())) << "without " << missing;
  }
}

TEST(InstallRootCheck, DanglingLinkDoesNotCount) {
  TempDir dir;
  MakeFakeInstallRoot(dir.path());
  fs::remove(dir / "SvcLedger");
  fs::create_symlink(dir / "gone", dir / "SvcLedger");
  EXPECT_FALSE(IsValidInstallRoot(dir.str()));
}

TEST(InstallRootCheck, PlatformFolderNames) {
  EXPECT_EQ(PlatformFolderNameFor("linux"), "linuxx86");
  EXPECT_EQ(PlatformFolderNameFor("x86"), "linuxx86");
  EXPECT_EQ(PlatformFolderNameFor("linux64"), "linuxx64");
  EXPECT_EQ(PlatformFolderNameFor("x64"), "linuxx64");
  EXPECT_EQ(PlatformFolderNameFor("armhf"), "linuxarmhf");
  EXPECT_EQ(PlatformFolderNameFor(""), "linuxarmhf");
}

TEST(FindInstallRootInProcess, NoCandidatePrintsOneLinePerCall) {
  TempDir home;
  ScopedEnv homeEnv("HOME", home.str().c_str());
  ScopedEnv rootEnv("ORBROOT", nullptr);
  testing::internal::CaptureStderr();
  EXPECT_EQ(FindInstallRoot(), "");
  EXPECT_EQ(FindInstallRoot(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "No valid ORBROOT directory found\nNo valid ORBROOT directory found\n");
}

// Each case copies the probe into a folder and runs it from there, since the
// program's own folder is one of the candidates.
class FindInstallRootFromProgram : public ::testing::Test {
 protected:
  std::string RunProbeFrom(const fs::path& folder) {
    fs::create_directories(folder);
    fs::copy_file(hosttest::ProbePath(), folder / "host_probe");
    hosttest::ProbeProcess probe({(folder / "host_probe").string(), "root"});
    std::string root = probe.ReadLine();
    EXPECT_EQ(probe.Finish(), 0);
    errors = probe.errors();
    return root;
  }
  TempDir dir;
  ScopedEnv home{"HOME", dir.str().c_str()};
  ScopedEnv orbRoot{"ORBROOT", nullptr};
  fs::path homeRoot = dir / "ORBClient" / PlatformFolderName();
  std::string errors;
};

TEST_F(FindInstallRootFromProgram, OrbRootWinsOverTheProgramFolder) {
  MakeFakeInstallRoot(dir / "installed");
  MakeFakeInstallRoot(dir / "fromEnv");
  ScopedEnv env("ORBROOT", (dir / "fromEnv").c_str());
  EXPECT_EQ(RunProbeFrom(dir / "installed"), (dir / "fromEnv").string());
}

TEST_F(FindInstallRootFromProgram, IncompleteOrbRootIsPassedOverSilently) {
  MakeFakeInstallRoot(dir / "installed");
  MakeFakeInstallRoot(dir / "fromEnv");
  fs::remove(dir / "fromEnv/util/shelfscan");
  ScopedEnv env("ORBROOT", (dir / "fromEnv").c_str());
  EXPECT_EQ(RunProbeFrom(dir / "installed"), (dir / "installed").string());
  EXPECT_EQ(errors, "");
}

TEST_F(FindInstallRootFromProgram, UtilSubfolderYieldsItsParent) {
  MakeFakeInstallRoot(dir / "installed");
  EXPECT_EQ(RunProbeFrom(dir / "installed/util"), (dir / "installed").string());
}

TEST_F(FindInstallRootFromProgram, OnlyAFolderNamedUtilIsSteppedOver) {
  MakeFakeInstallRoot(dir / "installed");
  MakeFakeInstallRoot(homeRoot);
  EXPECT_EQ(RunProbeFrom(dir / "installed/utils"), homeRoot.string());
  EXPECT_EQ(RunProbeFrom(dir / "installed/xutil"), homeRoot.string());
}

TEST_F(FindInstallRootFromProgram, UtilWithInvalidParentFallsThrough) {
  EXPECT_EQ(RunProbeFrom(dir / "notaroot/util"), "");
  EXPECT_EQ(errors, "No valid ORBROOT directory found\n");
  MakeFakeInstallRoot(homeRoot);
  fs::remove(dir / "notaroot/util/host_probe");
  EXPECT_EQ(RunProbeFrom(dir / "notaroot/util"), homeRoot.string());
}
