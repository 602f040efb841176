#include "host/capabilities.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include "support/files.h"
#include "support/privileges.h"
#include "support/temp_dir.h"

namespace fs = std::filesystem;

namespace {

// The probe reduces its own capabilities and prints the result, CapEff and CapPrm.
std::string ReduceInChild(const std::string& arguments = "") {
  return testsupport::RunAndCapture(HOST_PROBE_PATH " caps " + arguments + " 2>&1");
}

// CAP_DAC_OVERRIDE (bit 1) effective and permitted, CAP_DAC_READ_SEARCH (bit 2) permitted.
constexpr const char* kReduced = "0 0000000000000002 0000000000000006\n";

fs::path InstalledLibcap() {
  void* handle = dlopen("libcap.so.2", RTLD_LAZY);
  link_map* map = nullptr;
  fs::path path;
  if (handle != nullptr && dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0) path = fs::canonical(map->l_name);
  if (handle != nullptr) dlclose(handle);
  return path;
}

}  // namespace

TEST(ReduceCapabilities, RootKeepsOnlyFileAccessAndNobodyHasNothingToDo) {
  EXPECT_EQ(ReduceInChild(), kReduced);
  // As nobody, setting the reduced state would fail with -1; it must not be tried.
  EXPECT_EQ(testsupport::RunAsNobody([] { return ReduceCapabilities() == 0 ? 0 : 1; }), 0);
}

TEST(ReduceCapabilities, FallsBackToLibcap1AndReportsWhenNeitherLoads) {
  fs::path libcap = InstalledLibcap();
  ASSERT_FALSE(libcap.empty()) << "libcap.so.2 is a build dependency";
  testsupport::TempDir dir;
  testsupport::WriteFile(dir / "empty", "");
  std::string hide = libcap.string() + " " + (dir / "empty").string();
  std::string output = ReduceInChild(hide);
  EXPECT_EQ(output.rfind("Unable to set the capability as libcap library is not found\n"
                         "Unable to get the capability reduction lib\n-1 ", 0), 0u) << output;
  EXPECT_EQ(output.find(" 0000000000000002 "), std::string::npos);
  fs::copy_file(libcap, dir / "libcap.so.1");
  testsupport::ScopedEnv libraryPath("LD_LIBRARY_PATH", dir.str().c_str());
  EXPECT_EQ(ReduceInChild(hide), kReduced);
}
