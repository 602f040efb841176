// The shared configuration area damaged between two runs of a client.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "app/app_root.h"
#include "proof_process.h"
#include "support/files.h"
#include "support/privileges.h"
#include "support/temp_dir.h"

namespace prooftest {
namespace {

namespace fs = std::filesystem;

class AreaFaultTest : public testing::Test {
 protected:
  // One run of a client that maps the area: what it found, and that it ended normally.
  std::string RunClient() {
    fs::create_directories(home_);
    std::optional<int> status;
    const std::string printed = RunProofClient({"area"}, home_, &status);
    EXPECT_TRUE(status && WIFEXITED(*status) && WEXITSTATUS(*status) == 0) << printed;
    return printed;
  }
  std::string Initialised() const {
    return "open=1 level0=4 level3=0 set3=1 tuningA=200 path=" + home_.string() +
           "//.ORBClient/logs/ORBClient.log\n";
  }
  const std::string kNoArea = "open=0 level0=-1 level3=-1 set3=0 tuningA=-1 path=(null)\n";

  testsupport::TempDir scratch_;
  fs::path home_ = scratch_ / "home";
  fs::path area_ = apptest::LogAreaFile(home_);
};

TEST_F(AreaFaultTest, ATruncatedAreaIsInitialisedAfresh) {
  ASSERT_EQ(RunClient(), Initialised());
  ASSERT_EQ(apptest::ReadClassLevel(home_, 3), 1) << "the first run's change is in the file";
  for (uintmax_t length : {uintmax_t{300}, uintmax_t{0}}) {
    fs::resize_file(area_, length);
    EXPECT_EQ(RunClient(), Initialised()) << "cut to " << length;
    EXPECT_EQ(fs::file_size(area_), apptest::kAreaSize);
  }
}

TEST_F(AreaFaultTest, ADirectoryInItsPlaceMeansNoArea) {
  ASSERT_EQ(RunClient(), Initialised());
  fs::remove(area_);
  fs::create_directory(area_);
  EXPECT_EQ(RunClient(), kNoArea);
  EXPECT_TRUE(fs::is_directory(area_));
}

TEST_F(AreaFaultTest, AnAreaTheUserCannotOpenMeansNoAreaAndStaysUntouched) {
  ASSERT_EQ(RunClient(), Initialised());
  chmod(area_.c_str(), 0600);
  const std::string before = testsupport::ReadFile(area_);
  fs::permissions(scratch_.path(), fs::perms(0755));
  const fs::path out = scratch_ / "out";
  fs::create_directories(out);
  for (const fs::path& mine : {home_, home_ / ".ORBClient", home_ / ".ORBClient/logs", out})
    ASSERT_EQ(chown(mine.c_str(), testsupport::NobodyUid(), testsupport::NobodyGid()), 0) << mine;
  const int result = testsupport::RunAsNobody([&] {
    const std::optional<int> status = WaitWithin(StartProofClient({"area"}, home_, out / "client.out"),
                                                 std::chrono::seconds(60));
    return status && WIFEXITED(*status) ? WEXITSTATUS(*status) : 100;
  });
  EXPECT_EQ(result, 0);
  EXPECT_EQ(testsupport::ReadFile(out / "client.out"), kNoArea);
  EXPECT_EQ(testsupport::ReadFile(area_), before);
}

}  // namespace
}  // namespace prooftest
