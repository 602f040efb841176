#include "host/user_paths.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace {

const passwd* RealUserEntry() { return getpwuid(getuid()); }

// True when folder + name exists and others may execute it.
bool OthersMayExecute(std::string_view folder, const char* name) {
  std::string joined(folder);
  joined += name;
  struct stat info {};
  return stat(joined.c_str(), &info) == 0 && (info.st_mode & S_IXOTH) != 0;
}

}  // namespace

std::string GetHomeDirectory() {
  // A set but empty HOME is taken as it is: the caller then works below "/".
  if (const char* home = std::getenv("HOME")) return home;
  const passwd* entry = RealUserEntry();
  if (entry == nullptr || entry->pw_dir == nullptr) return "";
  return entry->pw_dir;
}

std::string GetUserName() {
  if (const char* user = std::getenv("USER")) return user;
  const passwd* entry = RealUserEntry();
  if (entry == nullptr || entry->pw_name == nullptr) return "";
  return entry->pw_name;
}

std::string GetExecutablePath() {
  char buffer[4096];
  ssize_t length = readlink("/proc/self/exe", buffer, sizeof(buffer) - 1);
  if (length < 0) return "<unknown>";
  buffer[length] = '\0';
  return buffer;
}

bool IsExecutableOnPath(unsigned size, const char* name) {
  const char* path = std::getenv("PATH");
  if (path == nullptr || name == nullptr) return false;
  std::string_view rest(path);
  for (;;) {
    size_t colon = rest.find(':');
    std::string_view element = rest.substr(0, colon);
    // An element that does not fit the caller's buffer ends the whole search.
    if (element.size() > size) return false;
    if (OthersMayExecute(element, name)) return true;
    if (colon == std::string_view::npos) return false;
    rest.remove_prefix(colon + 1);
  }
}

bool FileExists(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0;
}

void SplitPath(const std::string& path, std::string& folder, std::string& name) {
  size_t slash = path.rfind('/');
  if (slash == std::string::npos) {
    folder = path;
    name = path;
    return;
  }
  folder = path.substr(0, slash);
  name = path.substr(slash + 1);
}
