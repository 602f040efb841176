#pragma once
// A scratch HOME (and client install root) for fuzz targets that must reach
// files through the program's own path rules. Made once per fuzzing process
// and removed when it exits, so no input ever touches the runner's home.
#include <stdlib.h>

#include <filesystem>
#include <cstdint>
#include <fstream>
#include <string>

#include "tests/support/fake_root.h"
#include "tests/support/fixtures.h"

namespace fuzzsupport {

class ScratchHome {
 public:
  ScratchHome() {
    std::filesystem::create_directories(home_);
    setenv("HOME", home_.c_str(), 1);
  }

  // A root that passes the install-root test, named by ORBROOT.
  void MakeInstallRoot() {
    testsupport::MakeFakeInstallRoot(root_);
    setenv("ORBROOT", root_.c_str(), 1);
  }

  const std::filesystem::path& home() const { return home_; }
  const std::filesystem::path& root() const { return root_; }

 private:
  testsupport::TempDir top_{"norvex-fuzz"};
  std::filesystem::path home_ = top_ / "home", root_ = top_ / "root";
};

// Writes bytes as the whole content of file, replacing what was there.
inline void WriteBytes(const std::filesystem::path& file, const uint8_t* data, size_t size) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

}  // namespace fuzzsupport
