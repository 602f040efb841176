// Starts a minimal GTK 3 window and logmgr the same way (same environment,
// same preloaded shim) in turns, and prints per pair the time from fork to
// the first drawn frame and the peak resident memory at that frame. Needs a
// display (bench/run starts Xvfb).
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "pairs.h"

#include "tests/support/fake_root.h"
#include "tests/support/fixtures.h"

namespace fs = std::filesystem;

namespace {

struct Frame {
  double milliseconds = -1;
  long peakKb = -1;
};

long long MonotonicNs() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1000000000LL + now.tv_nsec;
}

// A client install root that logmgr accepts, with the window description,
// style sheet and images of the source tree.
// One start of program with the shim; the frame it noted, or nothing.
Frame RunOnce(const char* program, const fs::path& frameFile) {
  fs::remove(frameFile);
  const long long started = MonotonicNs();
  pid_t child = fork();
  if (child == 0) {
    setenv("LD_PRELOAD", FIRST_FRAME_SHIM, 1);
    setenv("FIRST_FRAME_OUT", frameFile.c_str(), 1);
    execl(program, program, static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  for (int waited = 0; waitpid(child, &status, WNOHANG) == 0; ++waited) {
    if (waited > 3000) {  // 30 s: the program never drew
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      return {};
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  std::ifstream in(frameFile);
  long long drawn = 0;
  Frame frame;
  if (in >> drawn >> frame.peakKb) frame.milliseconds = (drawn - started) / 1e6;
  return frame;
}

}  // namespace

int main(int argc, char** argv) {
  const int pairs = argc > 1 ? atoi(argv[1]) : 11;
  if (getenv("DISPLAY") == nullptr) {
    fprintf(stderr, "first_frame_bench: needs a DISPLAY\n");
    return 1;
  }
  const testsupport::TempDir top("first-frame");
  fs::create_directories(top / "home");
  testsupport::MakeFakeInstallRoot(top / "root", NORVEX_SOURCE_DIR);
  setenv("HOME", (top / "home").c_str(), 1);
  setenv("ORBROOT", (top / "root").c_str(), 1);
  setenv("NO_AT_BRIDGE", "1", 1);
  setenv("GSETTINGS_BACKEND", "memory", 1);

  for (int pair = -1; pair < pairs; ++pair) {  // pair -1 warms the caches and is not printed
    const Frame floor = RunOnce(MINIMAL_WINDOW, top / "frame");
    const Frame subject = RunOnce(LOGMGR, top / "frame");
    if (floor.milliseconds < 0 || subject.milliseconds < 0) {
      fprintf(stderr, "first_frame_bench: a program drew no frame\n");
      return 1;
    }
    if (pair < 0) continue;
    PrintPair("first_frame_ms", floor.milliseconds, subject.milliseconds);
    PrintPair("first_frame_hwm_kb", static_cast<double>(floor.peakKb), static_cast<double>(subject.peakKb));
  }
  return 0;
}
