#pragma once
// One client's byte stream as logd handles it, without the socket: the
// messages it completes, its rate limit and the deadlines by which it must
// finish a record or say something. Pure over its inputs, so a fuzzer can
// drive many of them with any bytes.
#include <chrono>
#include <ctime>
#include <string>
#include <vector>

#include "logd/options.h"
#include "logd/rate_limit.h"
#include "logd/record_line.h"

namespace logd {

using Clock = std::chrono::steady_clock;

// The moment bytes arrived: the steady clock for deadlines, the wall clock for lines.
struct Moment {
  Clock::time_point steady;
  timespec wall;
  static Moment Now();
};

struct SessionOutput {
  std::string lines;                 // whole lines for the log file
  std::vector<std::string> hellos;   // one description per hello
};

class ClientSession {
 public:
  ClientSession(const Peer& peer, const Options& options, const Moment& now);

  // Takes bytes the client sent at now; false when it must be dropped, with
  // the reason in problem().
  bool Take(const unsigned char* bytes, size_t size, const Moment& now, uint32_t flags, SessionOutput& out);
  // The moment the client is dropped for silence or a stalled record
  // (Clock::time_point::max() when never), and the reason then.
  Clock::time_point Deadline() const;
  std::string DeadlineProblem() const;
  // The line about records suppressed in windows that are over (all of them
  // when final), empty when none were.
  std::string SuppressedReport(bool final, uint32_t flags, const Moment& now);

  const Peer& peer() const { return peer_; }
  const std::string& problem() const { return problem_; }
  bool holdsPartial() const { return !pending_.empty(); }

 private:
  bool TakeMessages(const Moment& now, uint32_t flags, SessionOutput& out);

  Peer peer_;
  const Options& options_;
  RateLimit rate_;
  std::vector<unsigned char> pending_;
  Clock::time_point lastHeard_;
  Clock::time_point partialSince_;
  std::string problem_;
};

}  // namespace logd
