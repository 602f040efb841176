#pragma once
// The byte layout of messages on the logd socket, shared by the writer and
// by anything that decodes the stream. Fields are host byte order.
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace logclient::wire {

inline constexpr size_t kHeaderSize = 4;          // body length (u16), type (u16)
inline constexpr uint16_t kTypeRecord = 1;
inline constexpr uint16_t kTypeHello = 2;
inline constexpr size_t kHelloFixedSize = 2;      // client field, then identity + NUL
inline constexpr size_t kRecordFixedSize = 14;    // level, class, tid (u16); sec, usec (u32)
inline constexpr size_t kTextBufferSize = 8192;   // record text including its NUL
inline constexpr size_t kMaxRecordBody = kRecordFixedSize + kTextBufferSize;

// Body offsets of the record fields.
inline constexpr size_t kRecordLevel = 0;
inline constexpr size_t kRecordClass = 2;
inline constexpr size_t kRecordThread = 4;
inline constexpr size_t kRecordSeconds = 6;
inline constexpr size_t kRecordMicros = 10;

inline void PutU16(unsigned char* at, uint16_t value) { memcpy(at, &value, sizeof value); }
inline void PutU32(unsigned char* at, uint32_t value) { memcpy(at, &value, sizeof value); }
inline uint16_t GetU16(const unsigned char* at) {
  uint16_t value;
  memcpy(&value, at, sizeof value);
  return value;
}
inline uint32_t GetU32(const unsigned char* at) {
  uint32_t value;
  memcpy(&value, at, sizeof value);
  return value;
}

inline void PutHeader(unsigned char* at, size_t bodyLength, uint16_t type) {
  PutU16(at, static_cast<uint16_t>(bodyLength));
  PutU16(at + 2, type);
}

}  // namespace logclient::wire
