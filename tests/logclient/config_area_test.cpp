// The shared configuration area: its file bytes, repair, bounds and the
// level walk. Every case maps the area under its own HOME in a child.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "forked.h"
#include "logclient/logclient.h"
#include "support/files.h"
#include "support/temp_dir.h"

namespace {

using testsupport::ReadFile;
using testsupport::TempDir;

std::string AreaFile(const TempDir& home) { return home.str() + "//.ORBClient/.nvxndclogconf"; }

int32_t WordAt(const std::string& bytes, size_t offset) {
  int32_t word = 0;
  if (offset + 4 <= bytes.size()) memcpy(&word, bytes.data() + offset, 4);
  return word;
}

TEST(ConfigArea, FreshOrForeignFileGetsTheDefaultImage) {
  for (bool foreign : {false, true}) {
    TempDir home;
    if (foreign) testsupport::WriteFile(AreaFile(home), std::string(700, '\x5a'), 0666);
    EXPECT_FORKED_PASS(home.str(), [&] {
      ASSERT_EQ(1, log_config_open());
      EXPECT_EQ(0022u, umask(0)) << "the mask is left at 022 after opening";
      EXPECT_EQ(AreaFile(home), log_config_file_path());
      struct stat info {};
      ASSERT_EQ(0, stat(AreaFile(home).c_str(), &info));
      EXPECT_EQ(0666u, info.st_mode & 0777);
      std::string bytes = ReadFile(AreaFile(home));
      ASSERT_EQ(516u, bytes.size());
      EXPECT_EQ(0x167F, WordAt(bytes, 0));
      EXPECT_EQ(4, WordAt(bytes, 4));
      for (int logClass = 1; logClass < 60; ++logClass) EXPECT_EQ(0, WordAt(bytes, 4 + 4 * logClass));
      std::string logFile = home.str() + "//.ORBClient/logs/ORBClient.log";
      EXPECT_EQ(logFile, std::string(bytes.data() + 244));
      EXPECT_EQ(logFile, client_log_file_path());
      for (auto [offset, value] : {std::pair{500, 200}, {504, 2}, {508, 200}, {512, 0x12345678}})
        EXPECT_EQ(value, WordAt(bytes, offset)) << offset;
    });
  }
}

TEST(ConfigArea, ValidFileKeepsItsValuesAndChangesReachOtherProcesses) {
  TempDir home;
  EXPECT_FORKED_PASS(home.str(), [] {
    ASSERT_EQ(1, log_config_open());
    ASSERT_EQ(1, log_set_class_level(3, 1));
  });
  // A longer file with the right magic is cut but not reset.
  testsupport::WriteFile(AreaFile(home), ReadFile(AreaFile(home)) + "trailing bytes", 0666);
  EXPECT_FORKED_PASS(home.str(), [&] {
    ASSERT_EQ(1, log_config_open());
    EXPECT_EQ(516u, ReadFile(AreaFile(home)).size());
    EXPECT_EQ(1, log_get_class_level(3));
    EXPECT_FORKED_PASS("", [] {
      log_client_shutdown();  // map the file anew rather than use the inherited mapping
      ASSERT_EQ(1, log_config_open());
      EXPECT_EQ(1, log_set_class_level(5, 6));
    });
    EXPECT_EQ(6, log_get_class_level(5)) << "the mapping is shared";
  });
}

TEST(ConfigArea, SettersKeepTheirBounds) {
  TempDir home;
  EXPECT_FORKED_PASS(home.str(), [&] {
    ASSERT_EQ(1, log_config_open());
    EXPECT_EQ(0, log_set_class_level(60, 1));
    EXPECT_EQ(0, log_set_class_level(0, 8));
    EXPECT_EQ(0, log_set_class_level(-1, -1));
    EXPECT_EQ(1, log_set_class_level(59, 7));
    EXPECT_EQ(4, log_get_class_level(0));
    EXPECT_EQ(7, WordAt(ReadFile(AreaFile(home)), 4 + 4 * 59));
    EXPECT_EQ(0, log_set_tuning_a(0));
    EXPECT_EQ(0, log_set_tuning_a(2001));
    EXPECT_EQ(0, log_set_tuning_b(101));
    EXPECT_EQ(0, log_set_tuning_c(-1));
    EXPECT_EQ(1, log_set_tuning_a(2000));
    EXPECT_EQ(1, log_set_tuning_c(0));
    EXPECT_EQ(2000, log_get_tuning_a());
    EXPECT_EQ(2, log_get_tuning_b());
    EXPECT_EQ(0, log_get_tuning_c());

  });
}

TEST(ConfigArea, EffectiveLevelWalksUpTheParents) {
  TempDir home;
  EXPECT_FORKED_PASS(home.str(), [] {
    ASSERT_EQ(1, log_config_open());
    // 12 -> 22 -> 43 -> 0: everything resolves to class 0's ERROR at first.
    for (int logClass = 0; logClass < 60; ++logClass)
      EXPECT_EQ(LOG_LEVEL_ERROR, log_get_effective_level(logClass)) << logClass;
    ASSERT_EQ(1, log_set_class_level(43, LOG_LEVEL_INFO));
    EXPECT_EQ(LOG_LEVEL_INFO, log_get_effective_level(12));
    EXPECT_EQ(LOG_LEVEL_ERROR, log_get_effective_level(34));
    ASSERT_EQ(1, log_set_class_level(12, LOG_LEVEL_NONE));
    EXPECT_EQ(LOG_LEVEL_NONE, log_get_effective_level(12));
    ASSERT_EQ(1, log_set_class_level(0, LOG_LEVEL_INHERIT));
    EXPECT_EQ(-1, log_get_effective_level(34)) << "chain ends at the root unresolved";
    EXPECT_EQ(LOG_LEVEL_INFO, log_get_effective_level(22));
    EXPECT_EQ(-1, log_get_effective_level(60));
    EXPECT_EQ(LOG_LEVEL_ERROR, log_get_default_level(0));
  });
}

TEST(ConfigArea, FullLengthPathHasNoTerminator) {
  TempDir home;
  EXPECT_FORKED_PASS(home.str(), [&] {
    ASSERT_EQ(1, log_config_open());
    std::string longPath(256, 'p');
    ASSERT_EQ(1, log_set_shared_path(longPath.c_str()));
    std::string bytes = ReadFile(AreaFile(home));
    EXPECT_EQ(longPath, bytes.substr(244, 256));
    EXPECT_EQ(200, WordAt(bytes, 500)) << "the copy stops at the field";
    EXPECT_EQ(longPath, std::string(log_get_shared_path(), 256));
    ASSERT_EQ(1, log_set_shared_path("/short"));
    EXPECT_EQ("/short" + std::string(250, '\0'), ReadFile(AreaFile(home)).substr(244, 256)) << "NUL-padded";
    EXPECT_EQ(0, log_set_shared_path(nullptr));
  });
}

TEST(ConfigArea, ShutdownUnmapsAndWithoutAnAreaSettersFail) {
  TempDir home;
  EXPECT_FORKED_PASS(home.str(), [] {
    ASSERT_EQ(1, log_config_open());
    EXPECT_EQ(0, log_client_init()) << "counts as initialised: only the link is reported down";
    log_client_shutdown();
    EXPECT_EQ(-1, log_get_class_level(0));
    EXPECT_EQ(1, log_config_open()) << "a shut-down library starts again";
  });
  // A HOME that is a plain file: no per-user folder, so nothing to map.
  testsupport::WriteFile(home / "file", "");
  EXPECT_FORKED_PASS((home / "file").string(), [] {
    EXPECT_EQ(0, log_config_open());
    EXPECT_EQ(0, log_set_class_level(1, 1));
    EXPECT_EQ(-1, log_get_effective_level(0));
  });
}

TEST(ClassTable, TreeMatchesTheOneLogdUses) {
  const int kParents[60] = {-1, 0,  43, 0,  34, 0,  34, 0,  43, 43, 34, 34, 22, 0,  0,
                            0,  14, 34, 34, 14, 34, 0,  43, 0,  0,  43, 0,  34, 0,  28,
                            0,  43, 43, 34, 0,  0,  43, 41, 41, 0,  34, 0,  43, 0,  43,
                            43, 0,  34, 0,  48, 48, 48, 48, 48, 48, 48, 0,  0,  0,  0};
  TempDir home;
  EXPECT_FORKED_PASS(home.str(), [&] {
    ASSERT_EQ(1, log_config_open());
    EXPECT_STREQ("ALL", log_get_class_name(0));
    EXPECT_STREQ("LOG_ASSERT", log_get_class_name(1));
    for (int logClass = 0; logClass < 60; ++logClass) {
      EXPECT_EQ(kParents[logClass], log_get_class_parent(logClass)) << logClass;
      std::string name = log_get_class_name(logClass);
      EXPECT_LT(name.size(), 32u);
      EXPECT_LT(strlen(log_get_class_display_name(logClass)), 32u);
      // Children are named as parts of their parent component.
      if (kParents[logClass] > 0) {
        EXPECT_EQ(0, name.rfind(std::string(log_get_class_name(kParents[logClass])) + "_", 0)) << name;
      }
    }
    EXPECT_STREQ("Always On Logging", log_get_level_display_name(6));
    EXPECT_EQ(nullptr, log_get_class_name(60));
  });
}

}  // namespace
