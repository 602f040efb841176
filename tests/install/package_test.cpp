// The Debian package: what it holds, that its program runs from where it
// unpacks, and that its menu entry and AppStream data are valid.
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

#include "app/constants.h"
#include "install/shell_run.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace installtest {
namespace {

namespace fs = std::filesystem;

// The fixed root the program searches; the package must put everything there.
const std::string kPackageRoot = "/opt/Norvex/ORBClient";
const std::string kAppId = NORVEX_APP_ID;

class DebianPackage : public ::testing::Test {
 protected:
  void SetUp() override {
    const ShellResult cpack = RunShell("cd " + Quoted(scratch_.str()) + " && " + NORVEX_CPACK_COMMAND +
                                       " -G DEB --config " + Quoted(std::string(NORVEX_BINARY_DIR) + "/CPackConfig.cmake") +
                                       " -B " + Quoted((scratch_ / "out").string()));
    ASSERT_EQ(cpack.status, 0) << cpack.output;
    for (const auto& entry : fs::directory_iterator(scratch_ / "out"))
      if (entry.path().extension() == ".deb") deb_ = entry.path();
    ASSERT_FALSE(deb_.empty()) << cpack.output;
  }

  fs::path Unpack() {
    const fs::path into = scratch_ / "unpacked";
    const ShellResult unpack = RunShell("dpkg -x " + Quoted(deb_.string()) + " " + Quoted(into.string()));
    EXPECT_EQ(unpack.status, 0) << unpack.output;
    return into;
  }

  // Paths listed by dpkg-deb -c, without the leading ".".
  std::set<std::string> ListedFiles() {
    const ShellResult list = RunShell("dpkg-deb -c " + Quoted(deb_.string()));
    EXPECT_EQ(list.status, 0) << list.output;
    std::set<std::string> files;
    std::istringstream lines(list.output);
    // mode owner size date time path [-> target]; folders are left out.
    for (std::string line; std::getline(lines, line);) {
      std::istringstream fields(line);
      std::string mode, owner, size, date, time, path;
      if (fields >> mode >> owner >> size >> date >> time >> path && mode[0] != 'd' && path.rfind("./", 0) == 0)
        files.insert(path.substr(1));
    }
    return files;
  }

  testsupport::TempDir scratch_;
  fs::path deb_;
};

TEST_F(DebianPackage, HoldsTheClientRootAndTheMenuFilesAtTheirPathsAndNeedsOnlySystemLibraries) {
  const auto files = ListedFiles();
  const std::string program = kPackageRoot + "/util/" + std::string(constants::kProgramShortName);
  for (const std::string& path :
       {program, kPackageRoot + std::string(constants::kGladeFile), kPackageRoot + std::string(constants::kCssFile),
        kPackageRoot + std::string(constants::kSpinnerFile), kPackageRoot + std::string(constants::kIconFile),
        kPackageRoot + "/nls/de/LC_MESSAGES/appshelf.mo", kPackageRoot + "/nls/fr/LC_MESSAGES/appshelf.mo",
        kPackageRoot + "/lib/liblogclient.so", kPackageRoot + "/include/logclient/logclient.h",
        "/usr/share/applications/" + kAppId + ".desktop", "/usr/share/metainfo/" + kAppId + ".metainfo.xml",
        "/usr/share/icons/hicolor/64x64/apps/" + kAppId + ".png",
        std::string("/usr/share/doc/") + NORVEX_PACKAGE_NAME + "/copyright"})
    EXPECT_TRUE(files.count(path)) << path;
  for (const std::string& path : files)
    EXPECT_TRUE(path.rfind(kPackageRoot + "/", 0) == 0 || path.rfind("/usr/share/", 0) == 0) << path;

  // Found by dpkg-shlibdeps; the package's own library must not become a dependency.
  const ShellResult depends = RunShell("dpkg-deb -f " + Quoted(deb_.string()) + " Depends");
  EXPECT_NE(depends.output.find("libgtk-3-0"), std::string::npos) << depends.output;
  EXPECT_EQ(depends.output.find("liblogclient"), std::string::npos) << depends.output;
}

TEST_F(DebianPackage, UnpackedProgramFindsItsLibraryAndIsStripped) {
  const fs::path root = Unpack() / kPackageRoot.substr(1);
  const fs::path program = root / "util/logmgr";
  const ShellResult ldd = RunShell("env -u LD_LIBRARY_PATH ldd " + Quoted(program.string()));
  ASSERT_EQ(ldd.status, 0) << ldd.output;
  EXPECT_NE(ldd.output.find("liblogclient.so"), std::string::npos) << ldd.output;
  EXPECT_NE(ldd.output.find("=> " + root.string() + "/"), std::string::npos) << ldd.output;
  EXPECT_EQ(ldd.output.find("not found"), std::string::npos) << ldd.output;
  for (const fs::path& binary : {program, fs::canonical(root / "lib/liblogclient.so")}) {
    const ShellResult file = RunShell("file -b " + Quoted(binary.string()));
    EXPECT_NE(file.output.find(", stripped"), std::string::npos) << binary << ": " << file.output;
  }
}

TEST_F(DebianPackage, MenuEntryAndMetainfoAreValidAndPointIntoThePackage) {
  const fs::path unpacked = Unpack();
  const fs::path desktop = unpacked / ("usr/share/applications/" + kAppId + ".desktop");
  const ShellResult entry = RunShell("desktop-file-validate " + Quoted(desktop.string()));
  EXPECT_EQ(entry.status, 0) << entry.output;
  EXPECT_EQ(entry.output, "");
  const fs::path metainfo = unpacked / ("usr/share/metainfo/" + kAppId + ".metainfo.xml");
  const ShellResult appstream = RunShell("appstreamcli validate --no-net " + Quoted(metainfo.string()));
  EXPECT_EQ(appstream.status, 0) << appstream.output;

  const std::string text = testsupport::ReadFile(desktop);
  const std::string program = kPackageRoot + "/util/logmgr";
  EXPECT_NE(text.find("\nExec=" + program + "\n"), std::string::npos) << text;
  EXPECT_TRUE(fs::is_regular_file(unpacked / program.substr(1)));
  EXPECT_NE(text.find("\nIcon=" + kAppId + "\n"), std::string::npos) << text;
  EXPECT_NE(testsupport::ReadFile(metainfo).find("<launchable type=\"desktop-id\">" + kAppId + ".desktop<"),
            std::string::npos);
}

}  // namespace
}  // namespace installtest
