#include "host/os_identity.h"

#include <gtest/gtest.h>

#include "support/files.h"
#include "support/temp_dir.h"

using testsupport::ScopedEnv;
using testsupport::TempDir;
using testsupport::WriteScript;

TEST(OsInfoParsers, SystemInfoDropsFirstAndLastCharacterOfEachValue) {
  EXPECT_EQ(ParseSystemInfoText("PRODUCT_NAME=\"ThinPro\"\nPRODUCT_VERSION=\"8.0\"\n"),
            "ThinPro 8.0");
  EXPECT_EQ(ParseSystemInfoText("PRODUCT_NAME=ThinPro\nPRODUCT_VERSION=8.0\n"), "hinPr .");
  EXPECT_EQ(ParseSystemInfoText("PRODUCT_VERSION=\"8.0\"\n"), "8.0");
  // A last line without a line feed keeps its last character.
  EXPECT_EQ(ParseSystemInfoText("PRODUCT_NAME=\"ThinPro\""), "ThinPro\"");
}

TEST(OsInfoParsers, ThinClientValuesAreTakenRaw) {
  EXPECT_EQ(ParseThinClientInfoText("thinclient-name: 10ZiG\n"), " 10ZiG");
  EXPECT_EQ(ParseThinClientInfoText("thinclient-version:5.1\nthinclient-name:Zero"), "Zero 5.1");
  EXPECT_EQ(ParseThinClientInfoText("thinclient-name:"), "");
}

TEST(OsInfoParsers, OsReleaseTakesPrettyNameInsideQuotes) {
  EXPECT_EQ(ParseOsReleaseText("NAME=\"Debian\"\nPRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n"),
            "Debian GNU/Linux 12 (bookworm)");
  EXPECT_EQ(ParseOsReleaseText("PRETTY_NAME=Arch\n"), "rc");
  EXPECT_EQ(ParseOsReleaseText("ID=debian\n"), "");
}

TEST(OsInfoParsers, ShortOrOddValuesNeverReadOutOfRange) {
  for (const std::string& text :
       {std::string("PRETTY_NAME="), std::string("PRETTY_NAME=\n"), std::string("PRETTY_NAME=x\n"),
        std::string("PRETTY_NAME=x"), std::string("PRETTY_NAME=\"\"\n"),
        std::string("PRETTY_NAME=\"a\0b\"\n", 18), std::string("PRETTY_NAME=\n\n")}) {
    std::string value = ParseOsReleaseText(text);
    EXPECT_LE(value.size(), text.size());
    EXPECT_EQ(value.find('\n'), std::string::npos);
  }
  EXPECT_EQ(ParseOsReleaseText("PRETTY_NAME=x\n"), "");
  EXPECT_EQ(ParseOsReleaseText("PRETTY_NAME=xy"), "y");
  EXPECT_EQ(ParseOsReleaseText(std::string("PRETTY_NAME=\"a\0b\"\n", 18)), std::string("a\0b", 3));
  EXPECT_EQ(ParseSystemInfoText("PRODUCT_NAME=\nPRODUCT_VERSION="), "");
}

TEST(OsToken, SanitizerAndMarkers) {
  EXPECT_EQ(SanitizeOsToken("Debian GNU/Linux 12 (bookworm)"), "Debian-GNULinux-12-bookworm");
  EXPECT_EQ(SanitizeOsToken("a_b\tc\"d\xc3\xa9.-"), "a-bcd.-");
  EXPECT_TRUE(ContainsMarker("5.10.0-elux", "ELUX"));
  EXPECT_FALSE(ContainsMarker("5.10.0-ELUX", "elux"));
}

// Fake commands on a PATH that holds nothing else (plus "cut" for the
// release command's pipeline). Assumes the machine has neither
// /etc/systeminfo nor /etc/tzagent/info, as ordinary Linux systems do not.
class OsIdentificationChain : public ::testing::Test {
 protected:
  void SetUp() override { testsupport::LinkSystemTools(bin, {"cut"}); }
  void Fake(const char* name, const std::string& output, mode_t mode = 0755) {
    WriteScript(bin / name, "printf '" + output + "'", mode);
  }
  std::string Identify() { return GetOsIdentification(&kDefaultOsQueryLimits); }
  TempDir dir;
  std::filesystem::path bin = dir / "bin";
  ScopedEnv path{"PATH", bin.c_str()};
};

TEST_F(OsIdentificationChain, KernelVendorMarkerIsTheAnswer) {
  Fake("uname", "5.10.0-elux GNU/Linux\\n");
  Fake("lsb_release", "Description:\\tOther\\n");
  EXPECT_EQ(ReadKernelRelease(&kDefaultOsQueryLimits), "5.10.0-elux GNU/Linux");
  EXPECT_EQ(Identify(), "5.10.0-elux-GNULinux");
}

TEST_F(OsIdentificationChain, ThinClientCommandWhenNoInfoFile) {
  Fake("uname", "6.1.0-13-amd64 GNU/Linux\\n");
  Fake("tcinfo", "thinclient-name: 10ZiG\\n");
  Fake("lsb_release", "Description:\\tOther\\n");
  EXPECT_EQ(Identify(), "-10ZiG");
}

TEST_F(OsIdentificationChain, ReleaseCommandSpacesCollapse) {
  Fake("uname", "6.1.0-13-amd64 GNU/Linux\\n");
  Fake("tcinfo", "thinclient-name: 10ZiG\\n", 0750);
  Fake("lsb_release", "Description:\\tFedora  Linux\\n");
  EXPECT_EQ(Identify(), "Fedora-Linux");
}

TEST_F(OsIdentificationChain, ReleaseCommandIsFinalEvenWhenSilent) {
  Fake("lsb_release", "");
  EXPECT_EQ(ReadOsRelease(&kDefaultOsQueryLimits), "");
  EXPECT_EQ(Identify(), "");
}

TEST_F(OsIdentificationChain, CommandsWithoutOthersExecuteAreAbsent) {
  Fake("uname", "5.10.0-elux GNU/Linux\\n", 0750);
  Fake("lsb_release", "Description:\\tDebian\\n");
  EXPECT_EQ(ReadKernelRelease(&kDefaultOsQueryLimits), "");
  EXPECT_EQ(Identify(), "Debian");
}
