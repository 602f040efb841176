#include "logd/decoder.h"

#include <cstdio>
#include <cstring>

#include "logclient/wire_format.h"

namespace logd {
namespace {

using namespace logclient::wire;

constexpr size_t kMaxIdentity = 31;
constexpr size_t kMaxHelloBody = kHelloFixedSize + kMaxIdentity + 1;

Decoded Malformed(std::string problem) {
  Decoded result;
  result.status = DecodeStatus::kMalformed;
  result.problem = std::move(problem);
  return result;
}

// A text field must end at the body's last byte with its only NUL.
bool TextFillsBody(const unsigned char* text, size_t fieldSize) {
  return fieldSize > 0 && text[fieldSize - 1] == '\0' &&
         memchr(text, '\0', fieldSize - 1) == nullptr;
}

// Judges the header alone, so that a bad length is caught before its body
// is waited for.
std::string HeaderProblem(size_t bodyLength, uint16_t type) {
  if (type == kTypeHello) {
    if (bodyLength < kHelloFixedSize + 1 || bodyLength > kMaxHelloBody)
      return "hello body length " + std::to_string(bodyLength) + " out of range";
  } else if (type == kTypeRecord) {
    if (bodyLength < kRecordFixedSize + 1 || bodyLength > kMaxRecordBody)
      return "record body length " + std::to_string(bodyLength) + " out of range";
  } else {
    return "unknown message type " + std::to_string(type);
  }
  return {};
}

Decoded DecodeHello(const unsigned char* body, size_t bodyLength) {
  const unsigned char* identity = body + kHelloFixedSize;
  if (!TextFillsBody(identity, bodyLength - kHelloFixedSize))
    return Malformed("hello identity does not match its body length");
  Decoded result;
  result.status = DecodeStatus::kHello;
  result.hello.client = GetU16(body);
  result.hello.identity = reinterpret_cast<const char*>(identity);
  return result;
}

Decoded DecodeRecord(const unsigned char* body, size_t bodyLength) {
  const unsigned char* text = body + kRecordFixedSize;
  if (!TextFillsBody(text, bodyLength - kRecordFixedSize))
    return Malformed("record text does not match its body length");
  uint16_t level = GetU16(body + kRecordLevel);
  if (level < 1 || level > 6) return Malformed("record level " + std::to_string(level) + " out of range");
  Decoded result;
  result.status = DecodeStatus::kRecord;
  result.record.level = level;
  result.record.logClass = GetU16(body + kRecordClass);
  result.record.threadId = GetU16(body + kRecordThread);
  result.record.seconds = GetU32(body + kRecordSeconds);
  result.record.micros = GetU32(body + kRecordMicros);
  result.record.text = reinterpret_cast<const char*>(text);
  return result;
}

}  // namespace

std::string EscapedText(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (unsigned char c : text) {
    if (c == '\\') {
      out += "\\\\";
    } else if (c == '\n') {
      out += "\\n";
    } else if (c < 0x20 || c == 0x7f) {
      char hex[5];
      snprintf(hex, sizeof hex, "\\x%02x", c);
      out += hex;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out;
}

Decoded DecodeMessage(const unsigned char* data, size_t size) {
  if (data == nullptr || size < kHeaderSize) return {};
  size_t bodyLength = GetU16(data);
  uint16_t type = GetU16(data + 2);
  if (std::string problem = HeaderProblem(bodyLength, type); !problem.empty())
    return Malformed(std::move(problem));
  if (size < kHeaderSize + bodyLength) return {};
  Decoded result = type == kTypeHello ? DecodeHello(data + kHeaderSize, bodyLength)
                                      : DecodeRecord(data + kHeaderSize, bodyLength);
  if (result.status != DecodeStatus::kMalformed) result.consumed = kHeaderSize + bodyLength;
  return result;
}

std::string DescribeMessage(const Decoded& message) {
  if (message.status == DecodeStatus::kHello)
    return "hello " + EscapedText(message.hello.identity) +
           " client=" + std::to_string(message.hello.client);
  if (message.status != DecodeStatus::kRecord) return {};
  const RecordMessage& r = message.record;
  char head[128];
  snprintf(head, sizeof head, "record level=%u class=%u tid=%u time=%u.%06u text=",
           unsigned{r.level}, unsigned{r.logClass}, unsigned{r.threadId}, r.seconds, r.micros);
  return head + EscapedText(r.text);
}

}  // namespace logd
