// The shared configuration area: the file's bytes, the setters' ranges and the
// level walk, each case in a child of its own since the library maps one area.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>

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
    EXPECT_TRUE(log_config_file_path() == file && std::filesystem::is_directory(home + "/.ORBClient/logs"));
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
                           log_set_tuning_a(0), log_set_tuning_a(2000), log_set_tuning_b(101), log_set_tuning_b(100),
                           log_set_tuning_c(0), log_set_flags(0x10000), log_clear_flags(0x1)}),
              (std::vector{0, 0, 1, 0, 1, 0, 1, 1, 1, 1}));
    uint32_t flags = 0, defaults = 0;
    EXPECT_TRUE(log_get_flags(&flags) && log_get_default_flags(&defaults) && flags == 0x1167E && defaults == 0x167F);
    EXPECT_EQ((std::vector{log_get_class_level(0), log_get_class_level(59), log_get_tuning_c()}),
              (std::vector{4, 7, 0}));
    const std::string longPath(256, 'p');
    ASSERT_EQ(log_set_shared_path(longPath.c_str()), 1);
    EXPECT_EQ(ReadFile(home + "/.ORBClient/.nvxndclogconf").substr(244, 268),
              longPath + Bytes(2000) + Bytes(100) + Bytes(0)) << "no terminator; tuning words in their places";
    ASSERT_EQ(log_set_shared_path("/short"), 1);
    EXPECT_EQ(std::string(log_get_shared_path(), 256), "/short" + std::string(250, '\0'));
    EXPECT_EQ(log_get_effective_level(12), LOG_LEVEL_ERROR);  // 12 -> 22 -> 43 -> 0
    log_set_class_level(43, LOG_LEVEL_INFO);
    EXPECT_EQ(log_get_effective_level(12), LOG_LEVEL_INFO);
    log_set_class_level(0, LOG_LEVEL_INHERIT);
    EXPECT_EQ(log_get_effective_level(34), -1);
    const char* levels[] = {"INHERIT/Inherited", "VERBOSE/Verbose", "INFO/Information", "WARNING/Warnings",
                            "ERROR/Errors",      "FATAL/Fatal Errors", "AOL/Always On Logging", "NONE/Disabled"};
    for (int level = 0; level < 8; ++level)
      EXPECT_EQ(std::string(log_get_level_name(level)) + "/" + log_get_level_display_name(level), levels[level]);
    const int parents[] = {-1, 0,  43, 0,  34, 0,  34, 0,  43, 43, 34, 34, 22, 0,  0,  0,  14, 34, 34, 14,
                           34, 0,  43, 0,  0,  43, 0,  34, 0,  28, 0,  43, 43, 34, 0,  0,  43, 41, 41, 0,
                           34, 0,  43, 0,  43, 43, 0,  34, 0,  48, 48, 48, 48, 48, 48, 48, 0,  0,  0,  0};
    for (int logClass = 0; logClass < 60; ++logClass) EXPECT_EQ(log_get_class_parent(logClass), parents[logClass]);
  });
}

TEST(ClientPaths, RootNeedsBothFilesVersionIsTheFirstIdVersionAndRecentIsUnderADay) {
  InChildWithHome([](const std::string& home) {
    const std::string root = home + "/root";
    for (const char* file : {"/libproxy.so", "/gtk/glade/main.glade"}) {
      testsupport::WriteFile(root + file, "");
      EXPECT_EQ(is_client_install_root(root.c_str()), file[1] == 'g') << file;
    }
    std::filesystem::remove(root + "/libproxy.so");
    EXPECT_FALSE(is_client_install_root(root.c_str()));
    testsupport::WriteFile(root + "/libproxy.so", "");
    testsupport::WriteFile(root + "/pkginf/Ver.core.any", "NAME=client\nID_VERSION=1.2.3\nID_VERSION=9\n");
    setenv("ORBROOT", root.c_str(), 1);
    EXPECT_STREQ(client_installed_version(), "1.2.3");
    const timeval longAgo[2] = {{time(nullptr) - 90000, 0}, {time(nullptr) - 90000, 0}};
    EXPECT_TRUE(file_is_recent(root.c_str()) && utimes(root.c_str(), longAgo) == 0 && !file_is_recent(root.c_str()));
  });
}
