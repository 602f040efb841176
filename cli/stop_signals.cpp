#include "cli/stop_signals.h"

#include <signal.h>

#include <cerrno>
#include <ctime>
#include <initializer_list>

namespace {

sigset_t StopSet() {
  sigset_t set;
  sigemptyset(&set);
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&set, signal);
  return set;
}

int WaitForOne(const sigset_t& set, int seconds) {
  timespec deadline{};
  clock_gettime(CLOCK_MONOTONIC, &deadline);
  deadline.tv_sec += seconds;
  for (;;) {
    if (seconds <= 0) {
      const int caught = sigwaitinfo(&set, nullptr);
      if (caught > 0) return caught;
      continue;
    }
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    timespec left{deadline.tv_sec - now.tv_sec, deadline.tv_nsec - now.tv_nsec};
    if (left.tv_nsec < 0) left.tv_sec -= 1, left.tv_nsec += 1000000000L;
    if (left.tv_sec < 0) return 0;
    // A stray interruption (a stopped and continued process) waits on for what is left.
    const int caught = sigtimedwait(&set, nullptr, &left);
    if (caught > 0) return caught;
    if (errno == EAGAIN) return 0;
  }
}

}  // namespace

void HoldStopSignals() {
  const sigset_t set = StopSet();
  sigprocmask(SIG_BLOCK, &set, nullptr);
}

int WaitForStop(int seconds) {
  const sigset_t set = StopSet();
  const int caught = WaitForOne(set, seconds);
  // A shell clears the blocked set it inherits, so the tools of the stop steps
  // ("sh -c tar ...") would die of a second Ctrl-C to the terminal's process
  // group; an ignored signal stays ignored across exec and in the shell.
  struct sigaction ignore {};
  ignore.sa_handler = SIG_IGN;
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &ignore, nullptr);
  return caught;
}
