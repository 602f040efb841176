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
const std::string kRoot = "/opt/Norvex/ORBClient";
const std::string kAppId = NORVEX_APP_ID;

fs::path BuildPackage(const fs::path& out) {
  const ShellResult cpack = RunShell("cd " + Quoted(out.string()) + " && " + NORVEX_CPACK_COMMAND + " -G DEB --config " +
                                     Quoted(std::string(NORVEX_BINARY_DIR) + "/CPackConfig.cmake") + " -B " +
                                     Quoted(out.string()));
  EXPECT_EQ(cpack.status, 0) << cpack.output;
  for (const auto& entry : fs::directory_iterator(out))
    if (entry.path().extension() == ".deb") return entry.path();
  return {};
}

// Paths of the files dpkg-deb -c lists ("mode owner size date time ./path"), without the ".".
std::set<std::string> ListedFiles(const fs::path& deb) {
  std::set<std::string> files;
  std::istringstream lines(RunShell("dpkg-deb -c " + Quoted(deb.string())).output);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string mode, owner, size, date, time, path;
    if (fields >> mode >> owner >> size >> date >> time >> path && mode[0] != 'd' && path.starts_with("./"))
      files.insert(path.substr(1));
  }
  return files;
}

TEST(DebianPackage, HoldsTheClientRootAndValidMenuFilesAndRunsWhereItUnpacks) {
  testsupport::TempDir scratch;
  const fs::path deb = BuildPackage(scratch.path());
  ASSERT_FALSE(deb.empty());
  const auto files = ListedFiles(deb);
  for (const std::string& path :
       {kRoot + "/util/logmgr", kRoot + std::string(constants::kGladeFile), kRoot + std::string(constants::kCssFile),
        kRoot + std::string(constants::kSpinnerFile), kRoot + std::string(constants::kIconFile),
        kRoot + "/nls/de/LC_MESSAGES/appshelf.mo", kRoot + "/nls/fr/LC_MESSAGES/appshelf.mo",
        kRoot + "/lib/liblogclient.so", kRoot + "/include/logclient/logclient.h",
        "/usr/share/applications/" + kAppId + ".desktop", "/usr/share/metainfo/" + kAppId + ".metainfo.xml",
        "/usr/share/icons/hicolor/64x64/apps/" + kAppId + ".png",
        std::string("/usr/share/doc/") + NORVEX_PACKAGE_NAME + "/copyright"})
    EXPECT_TRUE(files.count(path)) << path;
  for (const std::string& path : files)
    EXPECT_TRUE(path.starts_with(kRoot + "/") || path.starts_with("/usr/share/")) << path;
  // Found by dpkg-shlibdeps; the package's own library must not become a dependency.
  const std::string depends = RunShell("dpkg-deb -f " + Quoted(deb.string()) + " Depends").output;
  EXPECT_NE(depends.find("libgtk-3-0"), std::string::npos) << depends;
  EXPECT_EQ(depends.find("liblogclient"), std::string::npos) << depends;

  const fs::path unpacked = scratch / "unpacked", root = unpacked / kRoot.substr(1);
  ASSERT_EQ(RunShell("dpkg -x " + Quoted(deb.string()) + " " + Quoted(unpacked.string())).status, 0);
  const ShellResult ldd = RunShell("env -u LD_LIBRARY_PATH ldd " + Quoted((root / "util/logmgr").string()));
  EXPECT_NE(ldd.output.find("=> " + root.string() + "/"), std::string::npos) << ldd.output;
  EXPECT_EQ(ldd.output.find("not found"), std::string::npos) << ldd.output;
  for (const fs::path& binary : {root / "util/logmgr", fs::canonical(root / "lib/liblogclient.so")})
    EXPECT_NE(RunShell("file -b " + Quoted(binary.string())).output.find(", stripped"), std::string::npos) << binary;

  const fs::path desktop = unpacked / ("usr/share/applications/" + kAppId + ".desktop");
  const fs::path metainfo = unpacked / ("usr/share/metainfo/" + kAppId + ".metainfo.xml");
  const ShellResult entry = RunShell("desktop-file-validate " + Quoted(desktop.string()));
  EXPECT_TRUE(entry.status == 0 && entry.output.empty()) << entry.output;
  const ShellResult appstream = RunShell("appstreamcli validate --no-net " + Quoted(metainfo.string()));
  EXPECT_EQ(appstream.status, 0) << appstream.output;
  const std::string text = testsupport::ReadFile(desktop);
  EXPECT_NE(text.find("\nExec=" + kRoot + "/util/logmgr\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\nIcon=" + kAppId + "\n"), std::string::npos) << text;
  EXPECT_NE(testsupport::ReadFile(metainfo).find("<launchable type=\"desktop-id\">" + kAppId + ".desktop<"),
            std::string::npos);
}

}  // namespace
}  // namespace installtest
