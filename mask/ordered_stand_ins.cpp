#include "mask/ordered_stand_ins.h"

std::string OrderedStandIns::StandIn(size_t member, ValueKind kind, const std::string& value) {
  std::unique_lock<std::mutex> held(lock_);
  if (const std::string* known = map_.Find(kind, value)) return *known;
  // An earlier member may still meet this value, or another new one.
  turn_.wait(held, [&] { return firstUnfinished_ >= member; });
  return map_.StandIn(kind, value);
}

void OrderedStandIns::Finished(size_t member) {
  const std::lock_guard<std::mutex> held(lock_);
  done_[member] = true;
  while (firstUnfinished_ < done_.size() && done_[firstUnfinished_]) ++firstUnfinished_;
  turn_.notify_all();
}
