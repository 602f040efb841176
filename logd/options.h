#pragma once
// logd's command line: the tuning that is the administrator's alone, never
// the shared area's (which any client may write).
#include <cstdint>

namespace logd {

struct Options {
  int64_t maxFileBytes = 16 * 1024 * 1024;  // 0: no cap, no rotation
  int keepFiles = 5;                        // ORBClient.log.1 ... .N
  int rateIntervalSeconds = 30;
  int rateBurst = 10000;                    // records per interval and client, 0: no limit
  int partialSeconds = 10;                  // a started record must be complete within this
  int idleSeconds = 3600;                   // a client silent this long is dropped, 0: never
};

// Fills options from the command line; -1 to go on, else the exit code
// (after --help, or with the one-line error already written).
int ParseOptions(int argc, char** argv, Options& options);

}  // namespace logd
