// Runs one host query in a process of its own, so the program path and the
// loader state are real: "root"; "lock NAME" (a started copy holds the lock
// until its standard input closes); "caps [LIB EMPTY]" (with LIB first hidden
// under EMPTY in a mount namespace of its own).
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "host/capabilities.h"
#include "host/install_root.h"
#include "host/lock.h"

namespace {

std::string StatusField(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind(key + ":\t", 0) == 0) return line.substr(key.size() + 2);
  return "";
}

bool HideFile(const char* target, const char* emptyFile) {
  return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount(emptyFile, target, nullptr, MS_BIND, nullptr) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::string command = argc > 1 ? argv[1] : "";
  if (command == "root") std::printf("%s\n", FindInstallRoot().c_str());
  if (command == "lock" && argc > 2) {
    bool refused = EnsureSingleInstance(argv[2]);
    std::printf("%s\n", refused ? "refused" : "started");
    std::fflush(stdout);
    for (char byte; !refused && read(STDIN_FILENO, &byte, 1) > 0;) {
    }
  }
  if (command == "caps") {
    if (argc > 3 && !HideFile(argv[2], argv[3])) return 3;
    int result = ReduceCapabilities();
    std::printf("%d %s %s\n", result, StatusField("CapEff").c_str(), StatusField("CapPrm").c_str());
  }
  return 0;
}
