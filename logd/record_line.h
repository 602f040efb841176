#pragma once
// A record as one line of the client's log file.
#include <cstdint>
#include <string>

#include "logd/decoder.h"

namespace logd {

// "2026-11-23 14:05:09.123456 VERBOSE LOG_CONNECT 4321 text\n": the record's
// local time, the short names of its level and class, its thread id and its
// text with control characters escaped. The flags word of the configuration
// area decides whether the date and the microseconds are written.
std::string RecordLine(const RecordMessage& record, uint32_t flags);

}  // namespace logd
