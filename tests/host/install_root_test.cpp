// Which client installation the utility works with, and its version file.
#include "host/install_root.h"

#include <gtest/gtest.h>

#include "host/client_version.h"
#include "support/fake_root.h"
#include "support/fixtures.h"

namespace fs = std::filesystem;
using testsupport::ScopedEnv;

// The program's own folder is a candidate, so the probe runs from a copy there.
std::string RootSeenFrom(const fs::path& folder) {
  fs::create_directories(folder);
  fs::copy_file(HOST_PROBE_PATH, folder / "probe", fs::copy_options::overwrite_existing);
  return testsupport::RunAndCapture((folder / "probe").string() + " 2>&1");
}

TEST(InstallRoot, OrbRootThenTheProgramFolderOrItsUtilParentThenTheHomeInstallation) {
  if (IsValidInstallRoot("/opt/Norvex/ORBClient")) GTEST_SKIP() << "a client is installed on this machine";
  testsupport::TempDir dir;
  ScopedEnv home("HOME", dir.c_str()), orbRoot("ORBROOT", (dir / "fromEnv").c_str());
  const fs::path homeRoot = dir / "ORBClient" / PlatformFolderName();
  for (const fs::path& root : {dir / "installed", dir / "fromEnv", homeRoot}) testsupport::MakeFakeInstallRoot(root);
  EXPECT_EQ(RootSeenFrom(dir / "installed"), (dir / "fromEnv").string() + "\n");
  fs::remove(dir / "fromEnv/util/shelfscan");
  EXPECT_EQ(RootSeenFrom(dir / "installed"), (dir / "installed").string() + "\n");
  EXPECT_EQ(RootSeenFrom(dir / "installed/util"), (dir / "installed").string() + "\n");
  for (const char* folder : {"installed/xutil", "notaroot/util"})
    EXPECT_EQ(RootSeenFrom(dir / folder), homeRoot.string() + "\n") << folder;
  // A marker must resolve: a dangling link does not.
  fs::remove(homeRoot / "SvcLedger");
  fs::create_symlink(dir / "gone", homeRoot / "SvcLedger");
  EXPECT_EQ(RootSeenFrom(dir / "notaroot"), "No valid ORBROOT directory found\n\n");
}

TEST(InstallRoot, EveryMarkerIsNeededAndEveryBuildTokenHasItsPlatformFolder) {
  for (auto [token, folder] : {std::pair{"linux", "linuxx86"}, {"x86", "linuxx86"}, {"linux64", "linuxx64"},
                               {"x64", "linuxx64"}, {"linux32", "linuxarmhf"}, {"armhf", "linuxarmhf"}})
    EXPECT_EQ(PlatformFolderNameFor(token), folder) << token;
  testsupport::TempDir root;
  for (const char* marker : testsupport::kInstallRootMarkers) {
    testsupport::MakeFakeInstallRoot(root.path());
    fs::remove(root / marker);
    EXPECT_FALSE(IsValidInstallRoot(root.str())) << marker;
  }
}

TEST(ClientVersion, FourDottedNumbersAfterTheFirstEqualsSignOfTheFirstLineOnly) {
  testsupport::TempDir root;
  testsupport::MakeFakeInstallRoot(root.path());
  ScopedEnv orbRoot("ORBROOT", root.c_str());
  const std::string digits(300, '4');
  for (auto [content, version] : {std::pair<std::string, std::string>{"VERSION=23.9.0.1\nX=1\n", "23.9.0.1"},
                                  {"V=1.2.3." + digits, "1.2.3." + digits.substr(0, 255 - 8)}, {"23.9.0.1\n", ""},
                                  {"V=23.9.0\n", ""}, {"V=23.9.0.1 \n", ""}, {"V=23.9.0.1\r\n", ""},
                                  {"A=B=1.2.3.4\n", ""}, {"N=x\nV=1.2.3.4\n", ""}}) {
    testsupport::WriteFile(root / ("pkginf/Ver.core." + PlatformFolderName()), content);
    EXPECT_EQ(ToNarrowString(GetClientVersion()), version) << content;
  }
  EXPECT_EQ(BuildClientIdentity().rfind("NorvexBeacon Linux/", 0), 0u);
  EXPECT_EQ(BuildProductToken("") + " " + BuildProductToken("Beacon"), "NDC Beacon");
  testsupport::WriteFile(root / ("pkginf/Ver.core." + PlatformFolderName()), "V=1.2.3.4\n");
  EXPECT_EQ(BuildProductToken(""), "NDC/1.2.3.4");
}
