#include "cli/gzip_tar_check.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <string>

namespace {

constexpr size_t kBlock = 512;

// The last two tar blocks seen so far, and how many bytes came out in all.
struct TarTail {
  std::string last;
  unsigned long long total = 0;

  void Add(const unsigned char* data, size_t size) {
    total += size;
    last.append(reinterpret_cast<const char*>(data), size);
    if (last.size() > 2 * kBlock) last.erase(0, last.size() - 2 * kBlock);
  }
  bool Closed() const {
    return total >= 2 * kBlock && total % kBlock == 0 &&
           std::all_of(last.begin(), last.end(), [](char c) { return c == 0; });
  }
};

// Inflates in until the gzip member ends; false on a damaged or cut stream.
bool InflateAll(std::ifstream& in, z_stream& stream, TarTail& tail) {
  std::array<unsigned char, 1 << 16> input{}, output{};
  for (int code = Z_OK; code != Z_STREAM_END;) {
    if (stream.avail_in == 0) {
      in.read(reinterpret_cast<char*>(input.data()), input.size());
      if (in.gcount() == 0) return false;
      stream.next_in = input.data();
      stream.avail_in = static_cast<uInt>(in.gcount());
    }
    stream.next_out = output.data();
    stream.avail_out = static_cast<uInt>(output.size());
    code = inflate(&stream, Z_NO_FLUSH);
    if (code != Z_OK && code != Z_STREAM_END) return false;
    tail.Add(output.data(), output.size() - stream.avail_out);
  }
  // Bytes after the trailer would be a second stream glued on, not this archive.
  return stream.avail_in == 0 && in.peek() == std::char_traits<char>::eof();
}

}  // namespace

bool IsCompleteGzipTar(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return false;
  z_stream stream{};
  if (inflateInit2(&stream, 16 + MAX_WBITS) != Z_OK) return false;  // 16: gzip wrapper only
  TarTail tail;
  const bool ended = InflateAll(in, stream, tail);
  inflateEnd(&stream);
  return ended && tail.Closed();
}
