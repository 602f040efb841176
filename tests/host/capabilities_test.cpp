#include "host/capabilities.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <fstream>

#include "probe_process.h"
#include "support/privileges.h"
#include "support/temp_dir.h"

namespace fs = std::filesystem;
using hosttest::ProbeProcess;

namespace {

std::string lastErrors;

// The file the loader opens for "libcap.so.2" on this machine.
fs::path InstalledLibcap() {
  void* handle = dlopen("libcap.so.2", RTLD_LAZY);
  if (handle == nullptr) return {};
  link_map* map = nullptr;
  fs::path path;
  if (dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0) path = fs::canonical(map->l_name);
  dlclose(handle);
  return path;
}

// Runs the probe in a child process; the capability masks are read there.
std::string ReduceInChild(const std::vector<std::string>& hide = {}) {
  std::vector<std::string> argv = {hosttest::ProbePath(), "caps"};
  argv.insert(argv.end(), hide.begin(), hide.end());
  ProbeProcess probe(argv);
  std::string line = probe.ReadLine();
  EXPECT_EQ(probe.Finish(), 0) << probe.errors();
  lastErrors = probe.errors();
  return line;
}
}  // namespace

TEST(ReduceCapabilities, RootKeepsOnlyTheFileAccessCapabilities) {
  // CAP_DAC_OVERRIDE (bit 1) effective and permitted, CAP_DAC_READ_SEARCH (bit 2) permitted.
  EXPECT_EQ(ReduceInChild(), "0 0000000000000002 0000000000000006");
  EXPECT_EQ(lastErrors, "");
}

TEST(ReduceCapabilities, NonRootReturnsWithoutLoadingTheLibrary) {
  int status = testsupport::RunAsNobody([] {
    if (ReduceCapabilities() != 0) return 1;
    return dlopen("libcap.so.2", RTLD_LAZY | RTLD_NOLOAD) == nullptr ? 0 : 2;
  });
  EXPECT_EQ(status, 0);
}

class ReduceCapabilitiesWithoutLibcap2 : public ::testing::Test {
 protected:
  void SetUp() override {
    libcap = InstalledLibcap();
    ASSERT_FALSE(libcap.empty()) << "libcap.so.2 is a build dependency";
    std::ofstream(dir / "empty").close();
  }
  std::string Reduce() { return ReduceInChild({libcap.string(), (dir / "empty").string()}); }
  testsupport::TempDir dir;
  fs::path libcap;
};

TEST_F(ReduceCapabilitiesWithoutLibcap2, NoLibraryReportsAndKeepsCapabilities) {
  std::string line = Reduce();
  EXPECT_EQ(line.substr(0, 3), "-1 ");
  EXPECT_NE(line, "-1 0000000000000002 0000000000000006");
  EXPECT_EQ(lastErrors,
            "Unable to set the capability as libcap library is not found\n"
            "Unable to get the capability reduction lib\n");
}

TEST_F(ReduceCapabilitiesWithoutLibcap2, FallsBackToLibcap1) {
  fs::copy_file(libcap, dir / "libcap.so.1");
  testsupport::ScopedEnv libraryPath("LD_LIBRARY_PATH", dir.str().c_str());
  EXPECT_EQ(Reduce(), "0 0000000000000002 0000000000000006");
}

TEST(SecureZero, ClearsEveryByteAndToleratesNull) {
  char secret[] = "hunter2";
  SecureZero(secret, sizeof(secret));
  EXPECT_EQ(std::string(secret, sizeof(secret)), std::string(sizeof(secret), '\0'));
  SecureZero(nullptr, 8);
}
