#pragma once
// The values of the shared configuration area that logd uses, copied out of
// the file and checked. Any program of any user may write that file (or
// shrink it, or swap it for something else), so logd never maps it: it reads
// a copy, and every value that is out of range falls back to its default.
#include <cstddef>
#include <cstdint>
#include <string>

namespace logd {

struct AreaValues {
  uint32_t flags = 0x0003;  // date and microseconds in every line
  std::string logPath;      // empty: the default log file
  int holdMs = 200;         // tuning A
  int drainSeconds = 2;     // tuning B
  int maxClients = 200;     // tuning C, 0 for no limit of the area's own
};

// The values an area image holds; defaults for a short or foreign image.
AreaValues AreaValuesFrom(const unsigned char* image, size_t size);

// Reads the area file now; defaults when it is missing, not a regular file
// or unreadable.
AreaValues ReadArea(const std::string& file);

// Creates the area file, empty and writable by every program of the client
// family, when there is none; the first client fills it with the defaults.
void ProvideArea(const std::string& file);

}  // namespace logd
