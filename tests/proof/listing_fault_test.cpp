// Listing a log folder of 5,000 rotated files as an ordinary user, with and
// without a sub-folder that user cannot read.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "app/app.h"
#include "support/fake_root.h"
#include "support/files.h"
#include "support/privileges.h"
#include "support/temp_dir.h"

namespace prooftest {
namespace {

namespace fs = std::filesystem;

constexpr int kPerFamily = 2500;

void GiveToNobody(const fs::path& top) {
  ASSERT_EQ(chown(top.c_str(), testsupport::NobodyUid(), testsupport::NobodyGid()), 0) << top;
  for (const auto& entry : fs::recursive_directory_iterator(top))
    ASSERT_EQ(lchown(entry.path().c_str(), testsupport::NobodyUid(), testsupport::NobodyGid()), 0) << entry.path();
}

class RotatedListingTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::permissions(scratch_.path(), fs::perms(0755));
    testsupport::MakeFakeInstallRoot(scratch_ / "root");
    logs_ = home_ / ".ORBClient/logs";
    fs::create_directories(logs_);
    for (int i = 0; i < kPerFamily; ++i) {
      std::ofstream(logs_ / ("userActivitylog." + std::to_string(i))) << "activity\n";
      std::ofstream(logs_ / ("kvlog." + std::to_string(i))) << "sibling\n";
    }
    testsupport::WriteFile(logs_ / "rotated-away/kvlog.old", "older sibling\n");
    GiveToNobody(home_);
    homeEnv_ = std::make_unique<testsupport::ScopedEnv>("HOME", home_.c_str());
    rootEnv_ = std::make_unique<testsupport::ScopedEnv>("ORBROOT", (scratch_ / "root").c_str());
  }

  // Lists both families as nobody; the list's length, and standard error.
  std::pair<int, std::string> ListAsNobody() {
    const fs::path errors = home_ / "stderr.txt";
    const fs::path listed = home_ / "listed.txt";
    const int status = testsupport::RunAsNobody([&] {
      if (!freopen(errors.c_str(), "w", stderr)) return 3;
      App app;
      App::FileList list;
      app.FindActivityAndKvlogs(list, app.logsFolder);
      std::ofstream out(listed);
      for (const fs::path& file : list) out << file.string() << "\n";
      return 0;
    });
    EXPECT_EQ(status, 0);
    const std::string text = testsupport::ReadFile(listed);
    return {static_cast<int>(std::count(text.begin(), text.end(), '\n')), testsupport::ReadFile(errors)};
  }

  testsupport::TempDir scratch_;
  fs::path home_ = scratch_ / "home";
  fs::path logs_;
  std::unique_ptr<testsupport::ScopedEnv> homeEnv_, rootEnv_;
};

TEST_F(RotatedListingTest, EveryRotatedFileIsListedActivityFirst) {
  const auto [count, errors] = ListAsNobody();
  EXPECT_EQ(count, 2 * kPerFamily + 1);
  EXPECT_EQ(errors, "");
  const std::string listed = testsupport::ReadFile(home_ / "listed.txt");
  const size_t lastActivity = listed.rfind("/userActivitylog.");
  const size_t firstSibling = listed.find("/kvlog.");
  EXPECT_LT(lastActivity, firstSibling);
  EXPECT_NE(listed.find("/rotated-away/kvlog.old\n"), std::string::npos);
  EXPECT_FALSE(fs::exists(home_ / "temp_file_name.txt"));
}

TEST_F(RotatedListingTest, AnUnreadableSubFolderDiscardsTheWholeListing) {
  ASSERT_EQ(chown((logs_ / "rotated-away").c_str(), 0, 0), 0);
  chmod((logs_ / "rotated-away").c_str(), 0700);
  const auto [count, errors] = ListAsNobody();
  EXPECT_EQ(count, 0) << "the 5,000 readable files must not be listed either";
  size_t lines = 0;
  for (size_t at = errors.find("Error executing find command.\n"); at != std::string::npos;
       at = errors.find("Error executing find command.\n", at + 1))
    ++lines;
  EXPECT_EQ(lines, 2u) << errors;
  EXPECT_NE(errors.find("Permission denied"), std::string::npos) << errors;
  // Left behind, holding the second (sibling) listing as far as it got.
  const std::string leftover = testsupport::ReadFile(home_ / "temp_file_name.txt");
  EXPECT_EQ(std::count(leftover.begin(), leftover.end(), '\n'), kPerFamily);
}

}  // namespace
}  // namespace prooftest
