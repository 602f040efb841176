// The installed client's version file, any bytes: GetClientVersion reads it
// through the install root and accepts only four dotted numbers found after
// the first "=" of the first line.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz/check.h"
#include "fuzz/scratch_home.h"
#include "host/client_version.h"
#include "host/install_root.h"

namespace {

fuzzsupport::ScratchHome* g_scratch = nullptr;
std::filesystem::path g_versionFile;

bool IsFourNumbers(const std::string& text) {
  int dots = 0;
  bool digitSeen = false;
  for (char c : text) {
    if (c == '.') {
      if (!digitSeen) return false;
      ++dots;
      digitSeen = false;
    } else if (c >= '0' && c <= '9') {
      digitSeen = true;
    } else {
      return false;
    }
  }
  return dots == 3 && digitSeen;
}

// The first line as the reader sees it: at most 255 bytes, ended by a line
// feed, and taken as a C string.
std::string FirstLineAsRead(const std::string& bytes) {
  std::string line = bytes.substr(0, std::min(bytes.find('\n'), size_t{255}));
  return line.substr(0, line.find('\0'));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  g_scratch = new fuzzsupport::ScratchHome;
  g_scratch->MakeInstallRoot();
  g_versionFile = g_scratch->root() / "pkginf" / ("Ver.core." + PlatformFolderName());
  std::filesystem::create_directories(g_versionFile.parent_path());
  std::atexit([] { delete g_scratch; });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzzsupport::WriteBytes(g_versionFile, data, size);
  const std::string version = ToNarrowString(GetClientVersion());
  const std::string line = FirstLineAsRead(std::string(reinterpret_cast<const char*>(data), size));
  const size_t equals = line.find('=');
  if (version.empty()) {
    FUZZ_CHECK(equals == std::string::npos || !IsFourNumbers(line.substr(equals + 1)));
  } else {
    FUZZ_CHECK(IsFourNumbers(version));
    FUZZ_CHECK(equals != std::string::npos && line.substr(equals + 1) == version);
  }
  return 0;
}
