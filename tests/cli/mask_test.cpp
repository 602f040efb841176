// logmgr-cli existing --mask on client logs with planted names and addresses.
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <future>
#include <string>

#include "cli/cli_fixture.h"
#include "host/install_root.h"
#include "mask/ordered_stand_ins.h"

namespace {

using namespace clitest;

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

// value in text with no letter or digit right before or after it.
bool HasWholeWord(const std::string& text, const std::string& value) {
  const auto apart = [&](size_t at) { return at >= text.size() || !std::isalnum(static_cast<unsigned char>(text[at])); };
  for (size_t at = text.find(value); at != std::string::npos; at = text.find(value, at + 1))
    if ((at == 0 || apart(at - 1)) && apart(at + value.size())) return true;
  return false;
}

// Over two read buffers of text (part has over 200 bytes), no line end in it.
std::string Repeated(const std::string& part) {
  std::string text;
  for (int i = 0; i < 12000; ++i) text += part;
  return text;
}

std::string Login() { return getpwuid(getuid())->pw_name; }

std::string HostName() {
  char name[256] = {};
  gethostname(name, sizeof name - 1);
  return name;
}

class Mask : public Cli {
 protected:
  Mask() {
    WriteFile(root_ / "config/KeywardConfig.xml",
              "<KeywardConfig>\n  <Server name=\"main\" address=\"broker.corp.example\" port=\"4443\"/>\n"
              "</KeywardConfig>\n");
    WriteFile(root_ / ("pkginf/Ver.core." + PlatformFolderName()), "VERSION=23.9.0.1\n");
    // One line in two members and in the middle of a line longer than the read buffer.
    // In another order first in the other member, so that the stand-ins of the two can only agree through one map.
    WriteFile(logs_ / "kvlog.1", "a line without values\n" + Line() + "\n");
    WriteFile(logs_ / "userActivitylog.latest", "first fe80::1c2b:3aff:fe4d:5e6f 10.20.30.40\n" + Line() + "\n");
    WriteFile(logs_ / "KeywardSvr.latest", Repeated(Line() + " ") + "\n");
    WriteFile(logs_ / "kvlog.2", std::string("\x1f\x8b\x08\0binary ", 12) + Line());
  }

  // Every kind of value, the configured host and one under its domain, the user's, the word.
  std::vector<std::string> Planted() const {
    return {"192.168.40.12", "10.20.30.40", "2001:db8:85a3::8a2e:370:7334", "fe80::1c2b:3aff:fe4d:5e6f",
            "3C:52:82:AA:01:FF", "ops@support.example", "broker.corp.example", "VDI-07.corp.example",
            home_.string(), Login(), HostName(), "Falcon7"};
  }
  std::string Line() const {
    std::string line = "connect";
    for (const std::string& value : Planted()) line += " " + value + ",";
    // Neither a word that only begins with the login nor a time is a value.
    return line + " " + Login() + "less at 12:30:45";
  }
  // The archive's members, extracted into folder.
  fs::path Masked(const char* name, std::vector<std::string> more = {}) {
    std::vector<std::string> args = {"existing", "--mask", "--mask-word", "Falcon7", "-o", Out(name)};
    args.insert(args.end(), more.begin(), more.end());
    EXPECT_EQ(Run(args), 0) << ReadFile(output_);
    const fs::path folder = scratch_ / (std::string(name) + ".d");
    fs::create_directories(folder);
    RunAndCapture("tar -xzf " + Out(name) + " -C " + folder.string());
    return folder;
  }
  // The last planted line of a member, as masked.
  static std::string MaskedLine(const fs::path& member) {
    const std::string text = ReadFile(member);
    return text.substr(text.rfind("connect "), text.size() - text.rfind("connect ") - 1);
  }
};

TEST_F(Mask, EveryPlantedValueBecomesOneStandInInEveryMemberAndRunAndBinariesStayOut) {
  EXPECT_EQ(Run({"existing", "-o", Out("plain.tgz")}), 0);
  const fs::path first = Masked("first.tgz");
  std::string plainMembers = Members(Out("plain.tgz"));
  plainMembers.erase(plainMembers.find("kvlog.2\n"), 8);
  EXPECT_EQ(Members(Out("first.tgz")), plainMembers + "masked-out.txt\n");
  EXPECT_NE(ReadFile(first / "masked-out.txt").find("kvlog.2: binary"), std::string::npos);

  const std::string everything = Lower(RunAndCapture("cat " + first.string() + "/*"));
  for (const std::string& value : Planted()) EXPECT_FALSE(HasWholeWord(everything, Lower(value))) << value;
  const std::string line = MaskedLine(first / "kvlog.1");
  EXPECT_NE(line.find(" " + Login() + "less at 12:30:45"), std::string::npos) << line;
  for (const char* standIn : {"10.0.0.1,", "fd00::1,", "02:00:00:00:00:01,", "host0001.example,", "/home/user0001,"})
    EXPECT_NE(line.find(standIn), std::string::npos) << standIn << " in " << line;
  EXPECT_EQ(MaskedLine(first / "userActivitylog.latest"), line);
  EXPECT_TRUE(ReadFile(first / "KeywardSvr.latest") == Repeated(line + " ") + "\n") << "a value cut in the long line";
  EXPECT_EQ(everything.find("broker"), std::string::npos) << "the configuration (ORBClient.log) is masked too";
  EXPECT_NE(ReadFile(first / "UserSystemInfo.txt").find("Installed: 23.9.0.1"), std::string::npos) << "not an address";

  const fs::path map = home_ / ".ORBClient/mask-map.json";
  struct stat status {};
  ASSERT_EQ(stat(map.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  EXPECT_EQ(RunAndCapture("grep -rl 10.0.0.1 " + home_.string()), map.string() + "\n") << "no copy left behind";
  const std::string kept = ReadFile(map);

  // A later run, with values in another order, gets the same stand-ins.
  WriteFile(logs_ / "kvlog.1", "again 10.20.30.40 " + Line() + "\n");
  const fs::path second = Masked("second.tgz");
  EXPECT_EQ(MaskedLine(second / "kvlog.1"), line);
  EXPECT_NE(ReadFile(second / "kvlog.1").find("again 10.0.0.2 "), std::string::npos);
  EXPECT_EQ(ReadFile(map), kept);
  EXPECT_EQ(ReadFile(second / "masked-out.txt").find("mask-map"), std::string::npos);

  // Another map starts afresh and leaves the default one alone.
  const fs::path other = Masked("other.tgz", {"--mask-map", Out("other.json")});
  EXPECT_NE(ReadFile(Out("other.json")).find("10.0.0.1"), std::string::npos);
  EXPECT_EQ(ReadFile(map), kept);
}

TEST_F(Mask, RefusesOptionsWithoutMaskAndAnUnreadableMapOrWordFile) {
  EXPECT_EQ(Run({"existing", "--mask-word", "x", "-o", Out("a.tgz")}), 64);
  WriteFile(scratch_ / "broken.json", "{ not json");
  EXPECT_EQ(Run({"existing", "--mask", "--mask-map", (scratch_ / "broken.json").string(), "-o", Out("a.tgz")}), 2);
  EXPECT_NE(ReadFile(output_).find("mask map"), std::string::npos) << ReadFile(output_);
  EXPECT_EQ(Run({"existing", "--mask", "--mask-file", Out("absent"), "-o", Out("a.tgz")}), 2);
  EXPECT_FALSE(fs::exists(Out("a.tgz")));
  WriteFile(scratch_ / "words", "Falcon7\n\n  Orion  \n");
  WriteFile(logs_ / "kvlog.1", "project Falcon7 and orion\nVega\nLyra\n");
  EXPECT_EQ(Run({"existing", "--mask", "--mask-file", (scratch_ / "words").string(), "--mask-word", "Vega\nLyra", "-o",
                 Out("w.tgz")}),
            0);
  EXPECT_EQ(RunAndCapture("tar -xzOf " + Out("w.tgz") + " kvlog.1"),
            "project word0001 and word0002\nword0003\nword0004\n");
}

// Members masked at once still number new values in member order.
TEST(OrderedStandIns, ALaterMembersNewValueWaitsForEveryEarlierMember) {
  StandInMap map;
  OrderedStandIns standIns(map, 3);
  auto later = std::async(std::launch::async, [&] { return standIns.StandIn(2, ValueKind::kHost, "late.example"); });
  standIns.Finished(1);
  EXPECT_EQ(later.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  EXPECT_EQ(standIns.StandIn(0, ValueKind::kHost, "early.example"), "host0001.example");
  standIns.Finished(0);
  EXPECT_EQ(later.get(), "host0002.example");
}

}  // namespace
