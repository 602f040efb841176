// A plain install writes the client root layout the program searches, and
// nothing outside the chosen root; the root can be moved afterwards.
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

TEST(InstallLayout, PutsEveryFileWhereTheProgramLooksAndRunsFromAMovedRoot) {
  testsupport::TempDir scratch;
  const fs::path root = scratch / "ORBClient";
  const ShellResult install = RunShell(std::string(NORVEX_CMAKE_COMMAND) + " --install " +
                                       Quoted(NORVEX_BINARY_DIR) + " --prefix " + Quoted(root.string()));
  ASSERT_EQ(install.status, 0) << install.output;
  // The menu files go to absolute system paths; only the package may take them.
  std::istringstream lines(install.output);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("-- Installing: ") || line.starts_with("-- Up-to-date: ")) {
      EXPECT_TRUE(line.substr(15).starts_with(root.string() + "/")) << line;
    }
  }
  for (std::string_view relative : {constants::kGladeFile, constants::kCssFile, constants::kSpinnerFile,
                                    constants::kIconFile})
    EXPECT_TRUE(fs::is_regular_file(root.string() + std::string(relative))) << relative;
  EXPECT_TRUE(fs::is_regular_file(root / "include/logclient/logclient.h"));
  const auto languages = ListedLanguages(fs::path(NORVEX_SOURCE_DIR) / "po");
  ASSERT_FALSE(languages.empty());
  for (const std::string& lang : languages)
    EXPECT_TRUE(fs::is_regular_file(root / "nls" / lang / "LC_MESSAGES" / (std::string(constants::kTextDomain) + ".mo")))
        << lang;

  const fs::path moved = scratch / "moved";
  fs::rename(root, moved);
  const fs::path program = moved / "util" / std::string(constants::kProgramShortName);
  EXPECT_EQ(access(program.c_str(), X_OK), 0) << program;
  const ShellResult ldd = RunShell("env -u LD_LIBRARY_PATH ldd " + Quoted(program.string()));
  EXPECT_NE(ldd.output.find("=> " + moved.string() + "/"), std::string::npos) << ldd.output;
  EXPECT_EQ(ldd.output.find("not found"), std::string::npos) << ldd.output;
  // Only the relative search path: nothing may lead back into the build tree.
  const ShellResult dynamic = RunShell("readelf -d " + Quoted(program.string()));
  EXPECT_NE(dynamic.output.find("[$ORIGIN/../lib]"), std::string::npos) << dynamic.output;
  EXPECT_EQ(dynamic.output.find(NORVEX_BINARY_DIR), std::string::npos) << dynamic.output;
}

}  // namespace
}  // namespace installtest
