#pragma once
// The stand-in map shared by threads that mask several members at once. A
// known value is looked up at once; a new one waits until every earlier
// member is done, so that stand-ins are numbered exactly as if the members
// were masked one by one, in order, and a fresh map comes out the same on
// every run.
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

#include "mask/stand_in_map.h"

class OrderedStandIns {
 public:
  OrderedStandIns(StandInMap& map, size_t members) : map_(map), done_(members, false) {}

  std::string StandIn(size_t member, ValueKind kind, const std::string& value);
  // Also for a member left out: later ones must not wait for it.
  void Finished(size_t member);

 private:
  StandInMap& map_;
  std::mutex lock_;
  std::condition_variable turn_;
  std::vector<bool> done_;
  size_t firstUnfinished_ = 0;
};
