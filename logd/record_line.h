#pragma once
// A record as one line of the client's log file.
#include <sys/types.h>

#include <cstdint>
#include <ctime>
#include <string>

#include "logd/decoder.h"

namespace logd {

// Who sent a record, as the kernel tells it (not as the record claims).
struct Peer {
  pid_t pid = 0;
  uid_t uid = 0;
};

// "2026-11-23 14:05:09.123456 VERBOSE LOG_CONNECT pid=1234 uid=1000 tid=4321 text\n":
// the local time the record arrived, the short names of its level and class,
// the sender's process and user, the thread id it gives and its text with
// control characters escaped. The flags word of the configuration area
// decides whether the date and the microseconds are written.
std::string RecordLine(const RecordMessage& record, uint32_t flags, const Peer& peer, const timespec& arrived);

// "<time> logd: suppressed 90 records of pid=1234 uid=1000\n".
std::string SuppressedLine(uint64_t count, uint32_t flags, const Peer& peer, const timespec& now);

}  // namespace logd
