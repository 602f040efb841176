// Helper program for the host tests: runs one host query in a process of its
// own, so the program path, the command line and the loader state are real.
//   host_probe root          prints the install root
//   host_probe lock NAME     prints "started" or "refused"; a started copy
//                            keeps running until its standard input closes
//   host_probe caps [LIB EMPTY]
//                            prints the ReduceCapabilities result and the
//                            CapEff and CapPrm masks afterwards; with LIB and
//                            EMPTY, LIB is first hidden under the empty file
//                            in a mount namespace of its own
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

int HoldLock(const char* name) {
  bool refused = EnsureSingleInstance(name);
  std::printf("%s\n", refused ? "refused" : "started");
  std::fflush(stdout);
  char byte;
  while (!refused && read(STDIN_FILENO, &byte, 1) > 0) {
  }
  return 0;
}

std::string StatusField(const std::string& key) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind(key + ":\t", 0) == 0) return line.substr(key.size() + 2);
  return "";
}

bool HideFile(const char* target, const char* emptyFile) {
  return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount(emptyFile, target, nullptr, MS_BIND, nullptr) == 0;
}

int ReduceAndReport(int argc, char** argv) {
  if (argc > 3 && !HideFile(argv[2], argv[3])) return 3;
  int result = ReduceCapabilities();
  std::printf("%d %s %s\n", result, StatusField("CapEff").c_str(), StatusField("CapPrm").c_str());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::string command = argc > 1 ? argv[1] : "";
  if (command == "root") {
    std::printf("%s\n", FindInstallRoot().c_str());
    return 0;
  }
  if (command == "lock" && argc > 2) return HoldLock(argv[2]);
  if (command == "caps") return ReduceAndReport(argc, argv);
  return 2;
}
