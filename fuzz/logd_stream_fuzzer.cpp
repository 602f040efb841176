// logd's decoder fed any byte stream. Every message it accepts must
// account for exactly its bytes and re-encode to them, its description must
// stay one line, and the stream must decode the same whether it arrives whole
// or in pieces (as it does from a socket).
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "logclient/wire_format.h"
#include "logd/decoder.h"

namespace {

using namespace logclient::wire;

struct Outcome {
  std::vector<std::string> lines;
  bool malformed = false;
};

std::string Encode(const logd::Decoded& message) {
  std::string bytes(message.consumed, '\0');
  auto* out = reinterpret_cast<unsigned char*>(bytes.data());
  const size_t body = message.consumed - kHeaderSize;
  if (message.status == logd::DecodeStatus::kHello) {
    PutHeader(out, body, kTypeHello);
    PutU16(out + kHeaderSize, message.hello.client);
    message.hello.identity.copy(reinterpret_cast<char*>(out + kHeaderSize + kHelloFixedSize), body);
    return bytes;
  }
  const logd::RecordMessage& r = message.record;
  PutHeader(out, body, kTypeRecord);
  PutU16(out + kHeaderSize + kRecordLevel, r.level);
  PutU16(out + kHeaderSize + kRecordClass, r.logClass);
  PutU16(out + kHeaderSize + kRecordThread, r.threadId);
  PutU32(out + kHeaderSize + kRecordSeconds, r.seconds);
  PutU32(out + kHeaderSize + kRecordMicros, r.micros);
  r.text.copy(reinterpret_cast<char*>(out + kHeaderSize + kRecordFixedSize), body);
  return bytes;
}

// Decodes messages from the front of pending, as the peer does; false once
// the stream is malformed.
bool Drain(std::vector<unsigned char>& pending, Outcome& outcome) {
  size_t offset = 0;
  for (;;) {
    const unsigned char* front = pending.data() + offset;
    const size_t left = pending.size() - offset;
    logd::Decoded message = logd::DecodeMessage(front, left);
    if (message.status == logd::DecodeStatus::kIncomplete) break;
    if (message.status == logd::DecodeStatus::kMalformed) {
      FUZZ_CHECK(!message.problem.empty() && message.consumed == 0);
      outcome.malformed = true;
      return false;
    }
    FUZZ_CHECK(message.consumed > kHeaderSize && message.consumed <= left);
    FUZZ_CHECK(Encode(message) == std::string(reinterpret_cast<const char*>(front), message.consumed));
    const std::string line = logd::DescribeMessage(message);
    FUZZ_CHECK(!line.empty() && line.find('\n') == std::string::npos);
    outcome.lines.push_back(line);
    offset += message.consumed;
  }
  pending.erase(pending.begin(), pending.begin() + static_cast<long>(offset));
  return true;
}

Outcome DecodeInPieces(const uint8_t* data, size_t size, size_t piece) {
  Outcome outcome;
  std::vector<unsigned char> pending;
  for (size_t at = 0; at < size; at += piece) {
    pending.insert(pending.end(), data + at, data + std::min(size, at + piece));
    if (!Drain(pending, outcome)) break;
  }
  return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  // The first byte chooses how the socket splits the rest.
  const size_t piece = 1 + data[0] % 97;
  const Outcome whole = DecodeInPieces(data + 1, size - 1, size);
  const Outcome split = DecodeInPieces(data + 1, size - 1, piece);
  FUZZ_CHECK(whole.lines == split.lines);
  FUZZ_CHECK(whole.malformed == split.malformed);
  FUZZ_CHECK(logd::DecodeMessage(nullptr, size).status == logd::DecodeStatus::kIncomplete);
  return 0;
}
