// The operating-system token: vendor texts, and the chain of fake commands on a private PATH.
#include "host/os_identity.h"

#include <gtest/gtest.h>

#include "support/fixtures.h"

TEST(OsIdentity, VendorValuesLoseBothEndsAndTokensKeepLettersDigitsDotsAndDashes) {
  for (auto [taken, expected] : {
           std::pair{ParseSystemInfoText("PRODUCT_NAME=\"ThinPro\"\nPRODUCT_VERSION=\"8.0\"\n"), "ThinPro 8.0"},
           {ParseSystemInfoText("PRODUCT_NAME=ThinPro\nPRODUCT_VERSION=8.0\n"), "hinPr ."},
           {ParseOsReleaseText("ID=x\nPRETTY_NAME=\"Debian GNU/Linux 12\"\n"), "Debian GNU/Linux 12"},
           {ParseOsReleaseText("PRETTY_NAME=\"Arch\""), "Arch\""},
           {SanitizeOsToken("Debian GNU/Linux 12 (bookworm)"), "Debian-GNULinux-12-bookworm"},
           {SanitizeOsToken("a_b\tc\"d\xc3\xa9.-"), "a-bcd.-"}})
    EXPECT_EQ(taken, expected);
}

TEST(OsIdentity, VendorMarkersStopTheChainAndTheReleaseCommandIsFinal) {
  if (std::filesystem::exists("/etc/systeminfo") || std::filesystem::exists("/etc/tzagent/info"))
    GTEST_SKIP() << "this machine has a thin client's own files";
  testsupport::TempDir bin;
  testsupport::LinkSystemTools(bin.path(), {"cut"});
  testsupport::ScopedEnv path("PATH", bin.c_str());
  auto fake = [&](const char* name, const std::string& output, mode_t mode = 0755) {
    testsupport::WriteScript(bin / name, "printf '" + output + "'", mode);
  };
  auto identify = [] { return GetOsIdentification(&kDefaultOsQueryLimits); };
  fake("lsb_release", "Description:\\tFedora  Linux\\n");
  fake("tcinfo", "thinclient-name: 10ZiG\\nthinclient-version:5.1\\n");
  fake("uname", "5.10.0-elux GNU/Linux\\n");
  EXPECT_EQ(identify(), "5.10.0-elux-GNULinux");
  for (const char* kernel : {"4.19-Dell", "5.4-unicon"}) {
    fake("uname", kernel);
    EXPECT_EQ(identify(), kernel);
  }
  fake("uname", "5.10.0-elux GNU/Linux\\n", 0750);  // not executable by others: absent
  EXPECT_EQ(identify(), "-10ZiG-5.1");
  fake("tcinfo", "thinclient-name: Other\\n");
  EXPECT_EQ(identify(), "Fedora-Linux");
  fake("lsb_release", "");
  EXPECT_EQ(identify(), "");
}
