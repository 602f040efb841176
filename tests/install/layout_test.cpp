// A plain install writes the client root layout the program searches, and
// nothing outside the chosen root.
#include <gtest/gtest.h>
#include <unistd.h>

#include <sstream>
#include <string>

#include "app/constants.h"
#include "install/po_catalogue.h"
#include "install/shell_run.h"
#include "support/temp_dir.h"

namespace installtest {
namespace {

namespace fs = std::filesystem;

class InstallLayout : public ::testing::Test {
 protected:
  ShellResult InstallInto(const fs::path& root) {
    return RunShell(std::string(NORVEX_CMAKE_COMMAND) + " --install " + Quoted(NORVEX_BINARY_DIR) +
                    " --prefix " + Quoted(root.string()));
  }

  // The line of ldd's report that names the logging library.
  static std::string LibraryLine(const fs::path& program) {
    const ShellResult ldd = RunShell("env -u LD_LIBRARY_PATH ldd " + Quoted(program.string()));
    std::istringstream lines(ldd.output);
    for (std::string line; std::getline(lines, line);)
      if (line.find("liblogclient.so") != std::string::npos) return line;
    return "(no liblogclient in: " + ldd.output + ")";
  }

  testsupport::TempDir scratch_;
};

TEST_F(InstallLayout, PutsEveryFileWhereTheProgramLooksForItAndNothingElsewhere) {
  const fs::path root = scratch_ / "ORBClient";
  const ShellResult install = InstallInto(root);
  ASSERT_EQ(install.status, 0) << install.output;
  // The menu files go to absolute system paths; only the package may take them.
  std::istringstream lines(install.output);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("-- Installing: ", 0) == 0 || line.rfind("-- Up-to-date: ", 0) == 0) {
      EXPECT_EQ(line.compare(15, root.string().size() + 1, root.string() + "/"), 0) << line;
    }
  }

  const std::string base = root.string();
  for (std::string_view relative : {constants::kGladeFile, constants::kCssFile, constants::kSpinnerFile,
                                    constants::kIconFile})
    EXPECT_TRUE(fs::is_regular_file(base + std::string(relative))) << relative;
  const fs::path program = root / "util" / std::string(constants::kProgramShortName);
  EXPECT_EQ(access(program.c_str(), X_OK), 0) << program;
  EXPECT_TRUE(fs::is_regular_file(root / "lib/liblogclient.so"));
  EXPECT_TRUE(fs::is_regular_file(root / "include/logclient/logclient.h"));
  const auto languages = ListedLanguages(fs::path(NORVEX_SOURCE_DIR) / "po");
  ASSERT_FALSE(languages.empty());
  for (const std::string& lang : languages)
    EXPECT_TRUE(fs::is_regular_file(root / "nls" / lang / "LC_MESSAGES" /
                                    (std::string(constants::kTextDomain) + ".mo")))
        << lang;
}

TEST_F(InstallLayout, ProgramFindsItsLibraryAfterTheRootIsMoved) {
  const fs::path first = scratch_ / "first";
  const ShellResult install = InstallInto(first);
  ASSERT_EQ(install.status, 0) << install.output;
  const fs::path moved = scratch_ / "moved";
  fs::rename(first, moved);

  const std::string line = LibraryLine(moved / "util/logmgr");
  EXPECT_NE(line.find("=> " + moved.string() + "/"), std::string::npos) << line;
  EXPECT_EQ(line.find("not found"), std::string::npos) << line;
  // Only the relative search path: nothing may lead back into the build tree.
  const ShellResult dynamic = RunShell("readelf -d " + Quoted((moved / "util/logmgr").string()));
  EXPECT_NE(dynamic.output.find("[$ORIGIN/../lib]"), std::string::npos) << dynamic.output;
  EXPECT_EQ(dynamic.output.find(NORVEX_BINARY_DIR), std::string::npos) << dynamic.output;
}

}  // namespace
}  // namespace installtest
