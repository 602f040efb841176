#include "logd/client_session.h"

#include <string>

#include "logd/decoder.h"

namespace logd {

Moment Moment::Now() {
  Moment now{Clock::now(), {}};
  clock_gettime(CLOCK_REALTIME, &now.wall);
  return now;
}

ClientSession::ClientSession(const Peer& peer, const Options& options, const Moment& now)
    : peer_(peer),
      options_(options),
      rate_(options.rateBurst, std::chrono::seconds(options.rateIntervalSeconds)),
      lastHeard_(now.steady) {}

bool ClientSession::Take(const unsigned char* bytes, size_t size, const Moment& now, uint32_t flags,
                         SessionOutput& out) {
  if (size == 0) return true;
  // The stall is timed from the record's first byte: a trickle must not keep it alive.
  if (pending_.empty()) partialSince_ = now.steady;
  lastHeard_ = now.steady;
  pending_.insert(pending_.end(), bytes, bytes + size);
  return TakeMessages(now, flags, out);
}

bool ClientSession::TakeMessages(const Moment& now, uint32_t flags, SessionOutput& out) {
  size_t offset = 0;
  for (;;) {
    Decoded message = DecodeMessage(pending_.data() + offset, pending_.size() - offset);
    if (message.status == DecodeStatus::kIncomplete) break;
    if (message.status == DecodeStatus::kMalformed) {
      problem_ = message.problem;
      return false;
    }
    if (message.status == DecodeStatus::kHello) {
      out.hellos.push_back(DescribeMessage(message) + " pid=" + std::to_string(peer_.pid) +
                           " uid=" + std::to_string(peer_.uid));
    } else if (rate_.Allow(now.steady)) {
      out.lines += SuppressedReport(false, flags, now);
      out.lines += RecordLine(message.record, flags, peer_, now.wall);
    }
    offset += message.consumed;
  }
  pending_.erase(pending_.begin(), pending_.begin() + static_cast<long>(offset));
  // What is left begins a record that arrived now.
  if (offset > 0 && !pending_.empty()) partialSince_ = now.steady;
  return true;
}

Clock::time_point ClientSession::Deadline() const {
  if (!pending_.empty()) return partialSince_ + std::chrono::seconds(options_.partialSeconds);
  if (options_.idleSeconds <= 0) return Clock::time_point::max();
  return lastHeard_ + std::chrono::seconds(options_.idleSeconds);
}

std::string ClientSession::DeadlineProblem() const {
  if (!pending_.empty())
    return "it held a partial record for " + std::to_string(options_.partialSeconds) + " s";
  return "it sent nothing for " + std::to_string(options_.idleSeconds) + " s";
}

std::string ClientSession::SuppressedReport(bool final, uint32_t flags, const Moment& now) {
  const uint64_t count = rate_.TakeSuppressed(final);
  return count > 0 ? SuppressedLine(count, flags, peer_, now.wall) : std::string();
}

}  // namespace logd
