// Where the client keeps its files: system-wide below /var/log/norvex/ or
// per user below the home folder; decided once per process.
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "logclient/client_link.h"
#include "logclient/logclient.h"

namespace logclient {
namespace {

constexpr char kSystemFolder[] = "/var/log/norvex/";
constexpr char kSystemSocket[] = "/var/log/norvex/.nvxndclogsocket";

enum class Mode { kUnknown, kSystemWide, kPerUser };

Mode g_mode = Mode::kUnknown;
char* g_home = nullptr;
int g_logsFolderReady = -1;  // unknown, then 1 made or 0 failed, kept for good
const char* g_configPath = nullptr;
const char* g_logPath = nullptr;
const char* g_socketPath = nullptr;

const char* HomeFolder() {
  if (g_home != nullptr) return g_home;
  if (const char* home = getenv("HOME")) {
    g_home = strdup(home);
  } else if (const passwd* entry = getpwuid(getuid()); entry != nullptr && entry->pw_dir) {
    g_home = strdup(entry->pw_dir);
  }
  return g_home;
}

bool LogsFolderReady(const char* home) {
  if (g_logsFolderReady < 0) {
    std::string folder = std::string(home) + "/.ORBClient/logs/";
    g_logsFolderReady = mkdir_p(folder.c_str(), 0777) ? 1 : 0;
  }
  return g_logsFolderReady == 1;
}

const char* ModePath(const char*& cache, const char* systemPath, const char* relative) {
  if (cache != nullptr) return cache;
  if (g_mode == Mode::kUnknown)
    g_mode = log_system_wide_mode() ? Mode::kSystemWide : Mode::kPerUser;
  cache = g_mode == Mode::kSystemWide ? strdup(systemPath) : user_path(relative);
  return cache != nullptr ? cache : "";
}

// Works on a writable copy: each parent is made by cutting the text at its
// last "/" and putting the "/" back afterwards.
bool MakeFolders(char* path, mode_t mode) {
  if (mkdir(path, mode) == 0 || errno == EEXIST) return true;
  if (errno != ENOENT || *path == '\0') return false;
  char* slash = strrchr(path, '/');
  if (slash == nullptr) return false;
  *slash = '\0';
  bool parentMade = MakeFolders(path, mode);
  *slash = '/';
  if (!parentMade) return false;
  return mkdir(path, mode) == 0 || errno == EEXIST;
}

}  // namespace
}  // namespace logclient

extern "C" {

int log_system_wide_mode(void) {
  struct stat folder;
  if (stat(logclient::kSystemFolder, &folder) == 0 && folder.st_uid == getuid()) return 1;
  // A folder owned by someone else still means system-wide when a logd
  // listens there.
  logclient::ScopedIgnoreSigpipe guard;
  bool connected = false;
  int fd = logclient::ConnectUnixSocket(logclient::kSystemSocket, &connected);
  if (!connected) return 0;
  close(fd);
  return 1;
}

char* user_path(const char* relative) {
  const char* home = logclient::HomeFolder();
  if (home == nullptr || relative == nullptr || !logclient::LogsFolderReady(home))
    return strdup("");
  // The relative texts begin with "/", so this yields "home//..."; harmless
  // and what every program of the client family computes.
  std::string path = std::string(home) + "/" + relative;
  return strdup(path.c_str());
}

const char* log_config_file_path(void) {
  return logclient::ModePath(logclient::g_configPath, "/var/log/norvex/.nvxndclogconf",
                             "/.ORBClient/.nvxndclogconf");
}

const char* client_log_file_path(void) {
  return logclient::ModePath(logclient::g_logPath, "/var/log/norvex/ORBClient.log",
                             "/.ORBClient/logs/ORBClient.log");
}

const char* log_socket_path(void) {
  return logclient::ModePath(logclient::g_socketPath, logclient::kSystemSocket,
                             "/.ORBClient/.nvxndclogsocket");
}

int mkdir_p(const char* path, mode_t mode) {
  if (path == nullptr) return 0;
  std::string writable(path);
  return logclient::MakeFolders(writable.data(), mode) ? 1 : 0;
}

int file_is_recent(const char* path) {
  struct stat file;
  if (path == nullptr || stat(path, &file) != 0) return 0;
  int32_t age = static_cast<int32_t>(time(nullptr) - file.st_mtime);
  return age < 86400 ? 1 : 0;
}

}  // extern "C"
