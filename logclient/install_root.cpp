// The client's install root and installed version, as the library finds them
// for itself (ORBROOT, its own executable's folder, then the standard places).
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "logclient/logclient.h"

namespace logclient {
namespace {

constexpr size_t kRootSize = 4096;
constexpr size_t kVersionSize = 32;

char g_installRoot[kRootSize] = {};
bool g_installRootLooked = false;
char g_version[kVersionSize] = {};
bool g_versionRead = false;

bool Exists(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0;
}

bool TakeRootIfValid(const std::string& folder) {
  if (!is_client_install_root(folder.c_str())) return false;
  strncpy(g_installRoot, folder.c_str(), kRootSize - 1);
  return true;
}

// The client's programs live in the root itself or in its "util" folder.
bool TakeRootFromExecutable() {
  char exe[kRootSize];
  ssize_t length = readlink("/proc/self/exe", exe, kRootSize - 1);
  if (length <= 0) return false;
  std::string folder(exe, static_cast<size_t>(length));
  size_t slash = folder.rfind('/');
  if (slash == std::string::npos) return false;
  folder.erase(slash);
  if (TakeRootIfValid(folder)) return true;
  slash = folder.rfind('/');
  if (slash == std::string::npos || folder.compare(slash + 1, std::string::npos, "util") != 0)
    return false;
  return TakeRootIfValid(folder.substr(0, slash));
}

void TakeFirstValidRoot() {
  const char* fromEnvironment = getenv("ORBROOT");
  if (fromEnvironment != nullptr && TakeRootIfValid(fromEnvironment)) return;
  if (TakeRootFromExecutable()) return;
  if (TakeRootIfValid("/opt/Norvex/ORBClient")) return;
  TakeRootIfValid("/usr/lib/ORBClient");
}

FILE* OpenVersionFile(const std::string& folder) {
  DIR* listing = opendir(folder.c_str());
  if (listing == nullptr) return nullptr;
  FILE* file = nullptr;
  while (const dirent* entry = readdir(listing)) {
    if (strstr(entry->d_name, "Ver.core.") == nullptr) continue;
    file = fopen((folder + entry->d_name).c_str(), "r");
    break;
  }
  closedir(listing);
  return file;
}

void ReadInstalledVersion() {
  strcpy(g_version, "unknown");
  FILE* file = OpenVersionFile(std::string(client_install_root()) + "/pkginf/");
  if (file == nullptr) return;
  static constexpr char kKey[] = "ID_VERSION=";
  char line[128];
  while (fgets(line, sizeof line, file) != nullptr) {
    const char* found = strstr(line, kKey);
    if (found == nullptr) continue;
    strncpy(g_version, found + sizeof kKey - 1, kVersionSize - 1);
    g_version[kVersionSize - 1] = '\0';
    g_version[strcspn(g_version, "\n")] = '\0';
    break;
  }
  fclose(file);
}

}  // namespace
}  // namespace logclient

extern "C" {

int is_client_install_root(const char* folder) {
  if (folder == nullptr) return 0;
  std::string root(folder);
  return logclient::Exists(root + "/libproxy.so") && logclient::Exists(root + "/gtk/glade/main.glade")
             ? 1
             : 0;
}

const char* client_install_root(void) {
  if (!logclient::g_installRootLooked) {
    logclient::g_installRootLooked = true;
    logclient::TakeFirstValidRoot();
  }
  return logclient::g_installRoot;
}

const char* client_installed_version(void) {
  if (!logclient::g_versionRead) {
    logclient::g_versionRead = true;
    logclient::ReadInstalledVersion();
  }
  return logclient::g_version;
}

}  // extern "C"
