#pragma once
// The fixed level and class tables, and the walk that resolves a class's
// level through its parents.
#include "logclient/config_area.h"

namespace logclient {

struct LevelRow {
  char name[32];
  char displayName[32];
};

struct ClassRow {
  char name[32];
  char displayName[32];
  int32_t parent;
};

extern const LevelRow kLogLevelTable[kLevelCount];
extern const ClassRow kLogClassTable[kClassCount];

// Inline because the record filter runs it on every log call, including the
// ones it drops, and those must stay at a handful of loads.
inline int EffectiveLevelIn(const ConfigArea* area, int logClass) {
  if (area == nullptr || static_cast<unsigned>(logClass) >= kClassCount) return -1;
  int level = LoadWord(area->levels[logClass]);
  int parent = kLogClassTable[logClass].parent;
  while (level == 0) {
    if (static_cast<unsigned>(parent) >= kClassCount) return -1;
    level = LoadWord(area->levels[parent]);
    parent = kLogClassTable[parent].parent;
  }
  return level;
}

}  // namespace logclient
