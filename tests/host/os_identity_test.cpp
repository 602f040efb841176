#include "host/os_identity.h"

#include <gtest/gtest.h>

#include "support/files.h"
#include "support/temp_dir.h"

TEST(OsInfoParsers, QuotedValuesLoseTheirFirstAndLastCharacter) {
  EXPECT_EQ(ParseSystemInfoText("PRODUCT_NAME=\"ThinPro\"\nPRODUCT_VERSION=\"8.0\"\n"), "ThinPro 8.0");
  EXPECT_EQ(ParseSystemInfoText("PRODUCT_NAME=ThinPro\nPRODUCT_VERSION=8.0\n"), "hinPr .");
  EXPECT_EQ(ParseSystemInfoText("PRODUCT_VERSION=\"8.0\"\n"), "8.0");
  EXPECT_EQ(ParseOsReleaseText("ID=x\nPRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n"),
            "Debian GNU/Linux 12 (bookworm)");
  // A last line without a line feed keeps its last character.
  EXPECT_EQ(ParseOsReleaseText("PRETTY_NAME=\"Arch\""), "Arch\"");
  EXPECT_EQ(ParseOsReleaseText(std::string("PRETTY_NAME=\"a\0b\"\n", 18)), std::string("a\0b", 3));
  for (const char* tooShort : {"PRETTY_NAME=", "PRETTY_NAME=\n", "PRETTY_NAME=x\n", "PRETTY_NAME=x",
                               "PRETTY_NAME=\"\"\n", "PRETTY_NAME=\n\n", "ID=x"})
    EXPECT_EQ(ParseOsReleaseText(tooShort), "") << tooShort;
  EXPECT_EQ(SanitizeOsToken("Debian GNU/Linux 12 (bookworm)"), "Debian-GNULinux-12-bookworm");
  EXPECT_EQ(SanitizeOsToken("a_b\tc\"d\xc3\xa9.-"), "a-bcd.-");
  EXPECT_FALSE(ContainsMarker("5.10.0-ELUX", "elux"));
}

// Fake commands on a PATH that holds nothing else but "cut". Assumes the
// machine has neither /etc/systeminfo nor /etc/tzagent/info, as ordinary
// Linux systems do not.
class OsIdentificationChain : public ::testing::Test {
 protected:
  void SetUp() override { testsupport::LinkSystemTools(bin, {"cut"}); }
  void Fake(const char* name, const std::string& output, mode_t mode = 0755) {
    testsupport::WriteScript(bin / name, "printf '" + output + "'", mode);
  }
  std::string Identify() { return GetOsIdentification(&kDefaultOsQueryLimits); }
  testsupport::TempDir dir;
  std::filesystem::path bin = dir / "bin";
  testsupport::ScopedEnv path{"PATH", bin.c_str()};
};

TEST_F(OsIdentificationChain, EachVendorMarkerStopsTheChainAndTheReleaseCommandIsFinal) {
  Fake("lsb_release", "Description:\\tFedora  Linux\\n");
  Fake("tcinfo", "thinclient-version:5.1\\nthinclient-name: 10ZiG\\n");
  Fake("uname", "5.10.0-elux GNU/Linux\\n");
  EXPECT_EQ(Identify(), "5.10.0-elux-GNULinux");
  Fake("uname", "6.1.0-13-amd64 GNU/Linux\\n");
  EXPECT_EQ(Identify(), "-10ZiG-5.1");
  Fake("tcinfo", "thinclient-name: Other\\n");
  EXPECT_EQ(Identify(), "Fedora-Linux");
  Fake("lsb_release", "");
  EXPECT_EQ(Identify(), "");
}

TEST_F(OsIdentificationChain, CommandsWithoutOthersExecuteAreAbsent) {
  Fake("uname", "5.10.0-elux GNU/Linux\\n", 0750);
  Fake("tcinfo", "thinclient-name: 10ZiG\\n", 0750);
  Fake("lsb_release", "Description:\\tDebian\\n");
  EXPECT_EQ(ReadKernelRelease(&kDefaultOsQueryLimits), "");
  EXPECT_EQ(Identify(), "Debian");
}
