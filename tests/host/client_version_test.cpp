#include "host/client_version.h"

#include <gtest/gtest.h>
#include <sys/utsname.h>

#include "host/install_root.h"
#include "support/fake_root.h"
#include "support/files.h"
#include "support/temp_dir.h"

using testsupport::ScopedEnv;
using testsupport::TempDir;

class ClientVersion : public ::testing::Test {
 protected:
  void SetUp() override { testsupport::MakeFakeInstallRoot(root.path()); }
  void WriteVersionFile(const std::string& content) {
    testsupport::WriteFile(root / ("pkginf/Ver.core." + PlatformFolderName()), content);
  }
  TempDir root;
  ScopedEnv orbRoot{"ORBROOT", root.str().c_str()};
};

TEST_F(ClientVersion, OnlyAWholeFourPartValueOnTheFirstLineCounts) {
  WriteVersionFile("VERSION=23.9.0.1\nOTHER=1\n");
  EXPECT_EQ(GetClientVersion(), L"23.9.0.1");
  EXPECT_EQ(BuildProductToken("Beacon"), "Beacon/23.9.0.1");
  for (const char* content : {"23.9.0.1\n", "VERSION=23.9.0\n", "VERSION=23.9.0.1 \n", "VERSION=v23.9.0.1\n",
                              "VERSION=23.9.0.1\r\n", "VERSION=23.9.0.1.5\n", "N=x\nVERSION=1.2.3.4\n", ""}) {
    WriteVersionFile(content);
    EXPECT_EQ(GetClientVersion(), L"") << content;
  }
  EXPECT_EQ(ParseVersionLine("A=B=1.2.3.4"), "");
  std::string digits(300, '4');
  WriteVersionFile("V=1.2.3." + digits + "\n");
  EXPECT_EQ(ToNarrowString(GetClientVersion()), "1.2.3." + digits.substr(0, 255 - 8)) << "cut, still used";
}

TEST_F(ClientVersion, IdentityLineNamesVersionKernelAndSystem) {
  utsname names{};
  ASSERT_EQ(uname(&names), 0);
  TempDir bin;
  testsupport::LinkSystemTools(bin.path(), {"cut"});
  testsupport::WriteScript(bin / "lsb_release", "printf 'Description:\\tUbuntu 22.04.3 LTS\\n'");
  ScopedEnv path("PATH", bin.str().c_str());
  WriteVersionFile("VERSION=23.9.0.1\n");
  EXPECT_EQ(BuildClientIdentity(), std::string("NorvexBeacon/23.9.0.1 Linux/") + names.release +
                                       " Ubuntu-22.04.3-LTS Q7Class NDCCapable");
  WriteVersionFile("");
  EXPECT_EQ(BuildClientIdentity().rfind("NorvexBeacon Linux/", 0), 0u);
  EXPECT_EQ(BuildProductToken(""), "NDC");
}
