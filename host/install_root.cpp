#include "host/install_root.h"

#include <sys/stat.h>

#include <cstdlib>
#include <iostream>

#include "host/user_paths.h"

namespace {

// Executables every client installation carries.
constexpr const char* kRootTestNames[] = {"KeywardDaemon", "SvcLedger", "PrimaryKeyward",
                                          "util/shelfscan"};

std::string TextBeforeLastSlash(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(0, slash);
}

// The root of a utility installed in the client's own "util" subfolder.
std::string ParentOfUtilFolder(const std::string& folder) {
  size_t slash = folder.rfind('/');
  if (slash == std::string::npos || folder.compare(slash + 1, std::string::npos, "util") != 0)
    return "";
  return folder.substr(0, slash);
}

std::string ExecutableFolderRoot() {
  std::string folder = TextBeforeLastSlash(GetExecutablePath());
  if (IsValidInstallRoot(folder)) return folder;
  std::string parent = ParentOfUtilFolder(folder);
  if (IsValidInstallRoot(parent)) return parent;
  return "";
}

}  // namespace

bool IsValidInstallRoot(const std::string& candidate) {
  if (candidate.empty()) return false;
  for (const char* name : kRootTestNames) {
    struct stat info {};
    if (stat((candidate + "/" + name).c_str(), &info) != 0) return false;
  }
  return true;
}

std::string FindInstallRoot() {
  if (const char* fromEnv = std::getenv("ORBROOT"); fromEnv && IsValidInstallRoot(fromEnv))
    return fromEnv;
  if (std::string root = ExecutableFolderRoot(); !root.empty()) return root;
  for (const std::string& fixed :
       {std::string("/opt/Norvex/ORBClient"),
        GetHomeDirectory() + "/ORBClient/" + PlatformFolderName(),
        std::string("/usr/lib/ORBClient")}) {
    if (IsValidInstallRoot(fixed)) return fixed;
  }
  std::cerr << "No valid ORBROOT directory found\n";
  return "";
}

std::string PlatformFolderNameFor(std::string_view token) {
  if (token == "linux" || token == "x86") return "linuxx86";
  if (token == "linux64" || token == "x64") return "linuxx64";
  return "linuxarmhf";
}

std::string PlatformFolderName() { return PlatformFolderNameFor(NORVEX_PLATFORM_TOKEN); }
