#pragma once
// What a benchmark that logs through the client library sets up first: a
// scratch HOME of its own (so the per-user area and socket are its own, never
// the user's), SIGPIPE ignored as the library expects of its host, and a
// thread name for the records. The scratch HOME goes away with the holder.
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>

#include "tests/support/fixtures.h"

class ScratchClientProcess {
 public:
  ScratchClientProcess(const char* tag, const char* threadName) : home_(tag) {
    setenv("HOME", home_.c_str(), 1);
    signal(SIGPIPE, SIG_IGN);
    prctl(PR_SET_NAME, threadName);
  }

 private:
  testsupport::TempDir home_;
};
