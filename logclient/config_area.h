#pragma once
// The shared configuration area as this library lays it out in memory.
// Every program of the client maps the same file, so the layout is a wire
// format: do not reorder or pad.
#include <cstdint>

#include "logclient/logclient.h"

namespace logclient {

inline constexpr int kClassCount = 60;
inline constexpr int kLevelCount = 8;
inline constexpr int kSharedPathSize = 256;
inline constexpr uint32_t kAreaMagic = 0x12345678;
// Callers size their loops by the public header; the area must agree with it.
static_assert(kClassCount == LOG_CLASS_COUNT, "the area holds one level per public log class");
static_assert(kLevelCount == LOG_LEVEL_NONE + 1, "levels run from LOG_LEVEL_INHERIT to LOG_LEVEL_NONE");

struct ConfigArea {
  uint32_t flags;
  int32_t levels[kClassCount];
  char path[kSharedPathSize];
  int32_t tuningA;
  int32_t tuningB;
  int32_t tuningC;
  uint32_t magic;
};
static_assert(sizeof(ConfigArea) == 516, "the area file is exactly 516 bytes");

// Null while no area is mapped. Other processes write the mapping at any
// time, so words are read and written with single relaxed atomic accesses.
extern ConfigArea* g_area;

template <typename Word>
inline Word LoadWord(const Word& word) {
  return __atomic_load_n(&word, __ATOMIC_RELAXED);
}
template <typename Word>
inline void StoreWord(Word& word, Word value) {
  __atomic_store_n(&word, value, __ATOMIC_RELAXED);
}

// Maps (creating or repairing) the area file; false leaves g_area null.
bool MapConfigArea();
void UnmapConfigArea();

}  // namespace logclient
