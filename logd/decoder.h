#pragma once
// Decodes the byte stream a logging client sends to logd: one message at a
// time from the front of a buffer. A pure function over bytes, so that it can
// be fed anything (fuzzers included) without touching a socket.
#include <cstddef>
#include <cstdint>
#include <string>

namespace logd {

enum class DecodeStatus {
  kIncomplete,  // more bytes are needed; nothing consumed
  kHello,
  kRecord,
  kMalformed,   // the stream cannot be trusted any further
};

struct HelloMessage {
  uint16_t client = 0;
  std::string identity;
};

struct RecordMessage {
  uint16_t level = 0;
  uint16_t logClass = 0;
  uint16_t threadId = 0;
  uint32_t seconds = 0;
  uint32_t micros = 0;
  std::string text;
};

struct Decoded {
  DecodeStatus status = DecodeStatus::kIncomplete;
  size_t consumed = 0;  // bytes of the message, when one was decoded
  HelloMessage hello;
  RecordMessage record;
  std::string problem;  // why the stream is malformed
};

Decoded DecodeMessage(const unsigned char* data, size_t size);

// A one-line description of a decoded hello or record, without the newline.
std::string DescribeMessage(const Decoded& message);

// Control characters escaped (a newline as backslash and n, a backslash
// doubled, other control bytes as \xHH), so that a text stays on one line.
std::string EscapedText(const std::string& text);

}  // namespace logd
