#pragma once
// A client install root with the four client executables only; callers add what
// they need. Plain C++, so that fuzz targets and benchmarks build it too.
#include <filesystem>
#include <fstream>

namespace testsupport {

inline constexpr const char* kInstallRootMarkers[] = {"KeywardDaemon", "SvcLedger", "PrimaryKeyward",
                                                      "util/shelfscan"};

// With a source tree, also its window description and images, for a window to show.
inline void MakeFakeInstallRoot(const std::filesystem::path& root, const std::filesystem::path& sourceTree = {}) {
  for (const char* name : kInstallRootMarkers) {
    std::filesystem::create_directories((root / name).parent_path());
    std::ofstream(root / name) << "#!/bin/sh\nexit 0\n";
    std::filesystem::permissions(root / name, std::filesystem::perms(0755));
  }
  for (const char* assets : {"gtk", "icons"})
    if (!sourceTree.empty()) std::filesystem::create_directory_symlink(sourceTree / assets, root / assets);
}

}  // namespace testsupport
