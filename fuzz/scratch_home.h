#pragma once
// A scratch HOME (and client install root) for fuzz targets that must reach
// files through the program's own path rules. Made once per fuzzing process
// and removed when it exits, so no input ever touches the runner's home.
#include <stdlib.h>

#include <filesystem>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/support/fake_root.h"

namespace fuzzsupport {

class ScratchHome {
 public:
  ScratchHome() {
    std::string pattern = (std::filesystem::temp_directory_path() / "norvex-fuzz-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) abort();
    top_ = pattern;
    home_ = top_ / "home";
    root_ = top_ / "root";
    std::filesystem::create_directories(home_);
    setenv("HOME", home_.c_str(), 1);
  }
  ~ScratchHome() {
    std::error_code ignored;
    std::filesystem::remove_all(top_, ignored);
  }
  ScratchHome(const ScratchHome&) = delete;
  ScratchHome& operator=(const ScratchHome&) = delete;

  // A root that passes the install-root test, named by ORBROOT.
  void MakeInstallRoot() {
    testsupport::MakeFakeInstallRoot(root_);
    setenv("ORBROOT", root_.c_str(), 1);
  }

  const std::filesystem::path& home() const { return home_; }
  const std::filesystem::path& root() const { return root_; }

 private:
  std::filesystem::path top_, home_, root_;
};

// Writes bytes as the whole content of file, replacing what was there.
inline void WriteBytes(const std::filesystem::path& file, const uint8_t* data, size_t size) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

// The whole content of file; empty when it cannot be read.
inline std::string ReadBytes(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace fuzzsupport
