// demo-client: a stand-in for a program of the client family. It logs a few
// records a second across several classes and every level from VERBOSE to
// FATAL, so that the shared area's levels decide what reaches logd, as they
// do for the real client's programs.
//
//   demo-client [RECORDS-PER-SECOND]      (default 4; stops on SIGTERM or SIGINT)
#include <signal.h>
#include <time.h>

#include <cstdio>
#include <cstdlib>

#include "logclient/logclient.h"

namespace {

volatile sig_atomic_t g_stop = 0;

void RequestStop(int) { g_stop = 1; }

struct Step {
  int logClass;
  int level;
  const char* format;  // takes the session number
};

// A session's life in the words of the client, most of it at the chatty levels.
constexpr Step kSession[] = {
    {5, LOG_LEVEL_VERBOSE, "session %d: resolving broker.norvex.example"},
    {23, LOG_LEVEL_INFO, "session %d: broker offered desktop 'Office'"},
    {28, LOG_LEVEL_VERBOSE, "session %d: TLS handshake done, cipher TLS_AES_256_GCM_SHA384"},
    {5, LOG_LEVEL_INFO, "session %d: connected"},
    {4, LOG_LEVEL_VERBOSE, "session %d: frame update 1920x1080, 37 rectangles"},
    {2, LOG_LEVEL_WARNING, "session %d: audio buffer ran low, 12 ms of silence inserted"},
    {4, LOG_LEVEL_VERBOSE, "session %d: frame update 1920x1080, 5 rectangles"},
    {14, LOG_LEVEL_ERROR, "session %d: network stalled for 3 s, reconnecting"},
    {21, LOG_LEVEL_INFO, "session %d: reconnected after 1 attempt"},
    {1, LOG_LEVEL_FATAL, "session %d: display channel assertion failed, channel restarted"},
};

void Pause(int recordsPerSecond) {
  long nanos = 1000000000L / recordsPerSecond;
  timespec wait{nanos / 1000000000L, nanos % 1000000000L};
  nanosleep(&wait, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  const int perSecond = argc > 1 ? atoi(argv[1]) : 4;
  if (argc > 2 || perSecond < 1 || perSecond > 100000) {
    fprintf(stderr, "usage: demo-client [RECORDS-PER-SECOND (1..100000)]\n");
    return 2;
  }
  signal(SIGTERM, RequestStop);
  signal(SIGINT, RequestStop);
  // The record writer leaves SIGPIPE to its host: a logd that goes away must
  // only take the link down, not this program.
  signal(SIGPIPE, SIG_IGN);
  log_client_init();
  const size_t steps = sizeof kSession / sizeof kSession[0];
  for (unsigned n = 0; !g_stop; ++n) {
    const Step& step = kSession[n % steps];
    log_write_class(step.logClass, step.level, "demo-client", "session", static_cast<int>(n),
                    step.format, static_cast<int>(1000 + n / steps));
    Pause(perSecond);
  }
  log_client_shutdown();
  return 0;
}
