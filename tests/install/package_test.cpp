// The Debian packages built for this test run (lintian checks the rest).
#include <gtest/gtest.h>

#include <string>

#include "support/files.h"
#include "support/temp_dir.h"

namespace installtest {
namespace {

namespace fs = std::filesystem;
using testsupport::RunAndCapture;
const std::string kRoot = "/opt/Norvex/ORBClient", kPackage = NORVEX_PACKAGE_NAME;

std::string Deb(const std::string& name) {
  for (const auto& entry : fs::directory_iterator(NORVEX_TEST_PACKAGES))
    if (entry.path().filename().string().starts_with(name + "_")) return "'" + entry.path().string() + "'";
  return name + " was not built";
}

TEST(DebianPackages, DevelopmentFilesStayApartAndTheProgramIsHardened) {
  const std::string dev = RunAndCapture("dpkg-deb -c " + Deb(kPackage + "-dev"));
  const std::string runtime = RunAndCapture("dpkg-deb -c " + Deb(kPackage));
  for (const std::string& file : {" ." + kRoot + "/include/logclient/logclient.h", " ." + kRoot + "/lib/liblogclient.so "}) {
    EXPECT_NE(dev.find(file), std::string::npos) << file;
    EXPECT_EQ(runtime.find(file), std::string::npos) << file;
  }
  EXPECT_NE(runtime.find("/hicolor/scalable/apps/" NORVEX_APP_ID ".svg"), std::string::npos) << runtime;
  // Found by dpkg-shlibdeps; the package's own library must not become a dependency.
  const std::string depends = RunAndCapture("dpkg-deb -f " + Deb(kPackage) + " Depends");
  EXPECT_NE(depends.find("libgtk-3-0"), std::string::npos) << depends;
  EXPECT_EQ(depends.find("liblogclient"), std::string::npos) << depends;

  testsupport::TempDir scratch;
  RunAndCapture("dpkg -x " + Deb(kPackage) + " " + scratch.str());
  for (const std::string binary : {"util/logmgr", "lib/liblogclient.so.1"}) {
    const std::string headers = RunAndCapture("readelf -ld " + (scratch / kRoot.substr(1) / binary).string());
    EXPECT_NE(headers.find("GNU_RELRO"), std::string::npos) << binary;
    EXPECT_NE(headers.find("BIND_NOW"), std::string::npos) << binary;
  }
  const std::string entry = testsupport::ReadFile(scratch / "usr/share/applications" / NORVEX_APP_ID ".desktop");
  EXPECT_NE(entry.find("\nExec=" + kRoot + "/util/logmgr\n"), std::string::npos) << entry;
}

}  // namespace
}  // namespace installtest
