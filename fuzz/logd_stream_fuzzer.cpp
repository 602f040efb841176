// logd's handling of its clients' byte streams, without sockets: several
// clients at once, each fed its bytes in pieces of any size, interleaved,
// with the clock moving (rate windows, stall and silence deadlines) and the
// shared area's bytes changing between pieces. Every line must be one whole
// line naming its client's credentials, and every record a client completed
// must come out as a line or be counted as suppressed, never lost or doubled.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "logclient/config_area.h"
#include "logd/area_values.h"
#include "logd/client_session.h"
#include "logd/decoder.h"

namespace {

using namespace logd;

// Reads bytes from the input in order; zeros once it is used up.
struct Input {
  const uint8_t* data;
  size_t size;
  size_t at = 0;
  uint8_t Byte() { return at < size ? data[at++] : 0; }
  bool Left() const { return at < size; }
};

struct Fed {
  std::unique_ptr<ClientSession> session;
  std::string bytes;     // all it was sent, to count its records afresh
  uint64_t lines = 0;    // record lines it produced
  uint64_t suppressed = 0;
};

// The records in a stream decoded whole, up to a malformed message.
uint64_t RecordsIn(const std::string& bytes) {
  uint64_t records = 0;
  for (size_t offset = 0;;) {
    const Decoded message =
        DecodeMessage(reinterpret_cast<const unsigned char*>(bytes.data()) + offset, bytes.size() - offset);
    if (message.status == DecodeStatus::kIncomplete || message.status == DecodeStatus::kMalformed) return records;
    records += message.status == DecodeStatus::kRecord;
    offset += message.consumed;
  }
}

void CheckLines(const std::string& lines, const Peer& peer, Fed& fed) {
  const std::string who = " pid=" + std::to_string(peer.pid) + " uid=" + std::to_string(peer.uid);
  FUZZ_CHECK(lines.empty() || lines.back() == '\n');
  for (size_t start = 0; start < lines.size();) {
    const size_t end = lines.find('\n', start);
    const std::string line = lines.substr(start, end - start);
    FUZZ_CHECK(line.find(who) != std::string::npos);
    unsigned long long count = 0;
    const size_t said = line.find(" logd: suppressed ");
    if (said != std::string::npos && sscanf(line.c_str() + said, " logd: suppressed %llu", &count) == 1)
      fed.suppressed += count;
    else
      ++fed.lines;
    start = end + 1;
  }
}

// A client leaves: its last report, then nothing it completed may be missing.
void Finish(Fed& fed, const Moment& now, uint32_t flags) {
  CheckLines(fed.session->SuppressedReport(true, flags, now), fed.session->peer(), fed);
  FUZZ_CHECK(fed.lines + fed.suppressed == RecordsIn(fed.bytes));
}

void ChangeArea(Input& in, unsigned char (&image)[sizeof(logclient::ConfigArea)], AreaValues& area) {
  const size_t offset = in.Byte() * 2 % sizeof image;
  for (size_t i = offset; i < std::min(sizeof image, offset + 8); ++i) image[i] = in.Byte();
  area = AreaValuesFrom(image, in.Byte() % 4 == 0 ? in.Byte() : sizeof image);
  FUZZ_CHECK(area.holdMs >= 1 && area.holdMs <= 2000 && area.drainSeconds >= 0 && area.drainSeconds <= 100);
  FUZZ_CHECK(area.maxClients >= 0 && area.maxClients <= 2000 && area.logPath.size() <= 256);
  FUZZ_CHECK(area.logPath.empty() || (area.logPath[0] == '/' && area.logPath.find('\0') == std::string::npos));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in{data, size};
  Options options;
  options.rateBurst = in.Byte() % 6;
  options.rateIntervalSeconds = 1 + in.Byte() % 3;
  options.partialSeconds = 1 + in.Byte() % 3;
  options.idleSeconds = in.Byte() % 5;
  Moment now{Clock::time_point{} + std::chrono::hours(1), {1700000000, 0}};
  std::vector<Fed> clients(1 + in.Byte() % 8);
  for (size_t i = 0; i < clients.size(); ++i)
    clients[i].session = std::make_unique<ClientSession>(Peer{static_cast<pid_t>(100 + i), static_cast<uid_t>(i)}, options, now);
  unsigned char image[sizeof(logclient::ConfigArea)] = {};
  AreaValues area;
  while (in.Left()) {
    Fed& fed = clients[in.Byte() % clients.size()];
    switch (in.Byte() % 4) {
      case 0: {  // a piece of the client's stream
        std::string piece;
        for (size_t n = in.Byte(); n > 0 && in.Left(); --n) piece += static_cast<char>(in.Byte());
        SessionOutput out;
        const bool keep = fed.session->Take(reinterpret_cast<const unsigned char*>(piece.data()), piece.size(),
                                            now, area.flags, out);
        fed.bytes += piece;
        CheckLines(out.lines, fed.session->peer(), fed);
        FUZZ_CHECK(keep || !fed.session->problem().empty());
        if (!keep) fed = Fed{std::make_unique<ClientSession>(fed.session->peer(), options, now), {}, 0, 0};
        break;
      }
      case 1:
        ChangeArea(in, image, area);
        break;
      case 2:  // time passes; clients past their deadline are dropped and come back
        now.steady += std::chrono::milliseconds(in.Byte() * 40);
        now.wall.tv_sec += 1;
        for (Fed& client : clients)
          if (client.session->Deadline() <= now.steady) {
            Finish(client, now, area.flags);
            client = Fed{std::make_unique<ClientSession>(client.session->peer(), options, now), {}, 0, 0};
          }
        break;
      default:
        CheckLines(fed.session->SuppressedReport(false, area.flags, now), fed.session->peer(), fed);
    }
  }
  for (Fed& fed : clients) Finish(fed, now, area.flags);
  return 0;
}
