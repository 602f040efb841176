// The shared configuration area: the file's bytes, the setters' ranges and the
// level walk, each case in a child of its own since the library maps one area.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "logclient/logclient.h"
#include "logd_process.h"
#include "support/fixtures.h"

using logclient_test::InChildWithHome;
using testsupport::Bytes;
using testsupport::ReadFile;

TEST(ConfigArea, AFreshOrForeignFileGetsTheDefaultImageAndTheMaskIsLeftAt022) {
  for (bool foreign : {false, true}) InChildWithHome([&](const std::string& home) {
    const std::string file = home + "//.ORBClient/.nvxndclogconf", logFile = home + "//.ORBClient/logs/ORBClient.log";
    if (foreign) testsupport::WriteFile(file, std::string(700, 'Z'), 0666);
    umask(077);
    ASSERT_EQ(log_config_open(), 1);
    EXPECT_EQ(umask(0), 022u);
    EXPECT_EQ(log_config_file_path(), file);
    struct stat info {};
    EXPECT_TRUE(stat(file.c_str(), &info) == 0 && (info.st_mode & 0777) == 0666);
    EXPECT_EQ(ReadFile(file), Bytes(0x167F) + Bytes(4) + std::string(59 * 4, '\0') + logFile +
                                  std::string(256 - logFile.size(), '\0') + Bytes(200) + Bytes(2) + Bytes(200) +
                                  Bytes(0x12345678));
  });
}

TEST(ConfigArea, SettersKeepTheirRangesAndLevelsResolveUpTheParents) {
  InChildWithHome([](const std::string& home) {
    ASSERT_EQ(log_config_open(), 1);
    EXPECT_EQ((std::vector{log_set_class_level(60, 1), log_set_class_level(0, 8), log_set_class_level(59, 7),
                           log_set_tuning_a(0), log_set_tuning_a(2000), log_set_tuning_b(101), log_set_tuning_c(0)}),
              (std::vector{0, 0, 1, 0, 1, 0, 1}));
    EXPECT_EQ((std::vector{log_get_class_level(0), log_get_class_level(59), log_get_tuning_c()}),
              (std::vector{4, 7, 0}));
    const std::string longPath(256, 'p');
    ASSERT_EQ(log_set_shared_path(longPath.c_str()), 1);
    EXPECT_EQ(ReadFile(home + "/.ORBClient/.nvxndclogconf").substr(244, 268),
              longPath + Bytes(2000) + Bytes(2) + Bytes(0)) << "no terminator; tuning words in their places";
    ASSERT_EQ(log_set_shared_path("/short"), 1);
    EXPECT_EQ(std::string(log_get_shared_path(), 256), "/short" + std::string(250, '\0'));
    EXPECT_EQ(log_get_effective_level(12), LOG_LEVEL_ERROR);  // 12 -> 22 -> 43 -> 0
    log_set_class_level(43, LOG_LEVEL_INFO);
    EXPECT_EQ(log_get_effective_level(12), LOG_LEVEL_INFO);
    log_set_class_level(0, LOG_LEVEL_INHERIT);
    EXPECT_EQ(log_get_effective_level(34), -1);
  });
}
