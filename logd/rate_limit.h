#pragma once
// A client's records per window: up to burst pass in each interval, the rest
// are counted and reported once the window is over.
#include <chrono>
#include <cstdint>

namespace logd {

class RateLimit {
 public:
  using Clock = std::chrono::steady_clock;

  RateLimit(int burst, std::chrono::seconds interval) : burst_(burst), interval_(interval) {}

  // Whether a record arriving at now may pass.
  bool Allow(Clock::time_point now) {
    if (burst_ <= 0) return true;
    if (passed_ == 0 || now - start_ >= interval_) {
      ended_ += suppressed_;
      suppressed_ = 0;
      passed_ = 0;
      start_ = now;
    }
    if (passed_ < burst_) return ++passed_, true;
    ++suppressed_;
    return false;
  }

  // Records suppressed in windows that are over (all of them when final), to be
  // reported once; zero afterwards.
  uint64_t TakeSuppressed(bool final) {
    uint64_t count = ended_ + (final ? suppressed_ : 0);
    ended_ = 0;
    if (final) suppressed_ = 0;
    return count;
  }

 private:
  int burst_;
  std::chrono::seconds interval_;
  Clock::time_point start_{};
  int passed_ = 0;
  uint64_t suppressed_ = 0;
  uint64_t ended_ = 0;
};

}  // namespace logd
