#include "mask/stream_masker.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "mask/text_sniff.h"
#include "mask/value_scanner.h"
#include "mask/write_all.h"

namespace {

// Closes its descriptor whatever way the copy ends.
struct Fd {
  int fd;
  ~Fd() {
    if (fd >= 0) close(fd);
  }
};

ssize_t ReadSome(int fd, char* into, size_t size) {
  ssize_t got = 0;
  do got = read(fd, into, size);
  while (got < 0 && errno == EINTR);
  return got;
}

// Where the piece to mask now ends: after the last line end, else after the
// last blank of a full buffer, else the whole of it.
size_t PieceEnd(const char* data, size_t size, bool final) {
  if (final) return size;
  for (size_t i = size; i > 0; --i)
    if (data[i - 1] == '\n') return i;
  if (size < kMaskBufferBytes) return 0;
  for (size_t i = size; i > 0; --i)
    if (data[i - 1] == ' ' || data[i - 1] == '\t') return i;
  return size;
}

// The piece with its values replaced, into out.
bool MaskPiece(const char* data, size_t size, ValueScanner& scanner, const StandInOf& standInOf, std::string& out) {
  static thread_local std::vector<ValueMatch> found;
  if (!scanner.Scan(data, size, found)) return false;
  out.clear();
  size_t copied = 0;
  for (const ValueMatch& match : found) {
    out.append(data + copied, match.from - copied);
    out += standInOf(match.kind, std::string(data + match.from, match.to - match.from));
    copied = match.to;
  }
  out.append(data + copied, size - copied);
  return true;
}

}  // namespace

MaskResult MaskFile(const std::filesystem::path& in, const std::filesystem::path& out, ValueScanner& scanner,
                    const StandInOf& standInOf) {
  const Fd source{open(in.c_str(), O_RDONLY | O_CLOEXEC)};
  const Fd target{open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600)};
  if (source.fd < 0 || target.fd < 0) return MaskResult::kFailed;
  std::vector<char> buffer(kMaskBufferBytes);
  std::string masked;
  size_t held = 0;
  bool first = true;
  for (bool final = false; !final;) {
    const ssize_t got = ReadSome(source.fd, buffer.data() + held, buffer.size() - held);
    if (got < 0) return MaskResult::kFailed;
    final = got == 0;
    // The start decides what the member is; past it, a NUL still gives a binary away.
    const char* fresh = buffer.data() + held;
    if (first ? !LooksLikeText(fresh, static_cast<size_t>(got)) : std::memchr(fresh, '\0', static_cast<size_t>(got)) != nullptr)
      return MaskResult::kBinary;
    first = false;
    held += static_cast<size_t>(got);
    const size_t end = PieceEnd(buffer.data(), held, final);
    if (end == 0) continue;
    if (!MaskPiece(buffer.data(), end, scanner, standInOf, masked) || !WriteAll(target.fd, masked.data(), masked.size()))
      return MaskResult::kFailed;
    std::copy(buffer.begin() + static_cast<long>(end), buffer.begin() + static_cast<long>(held), buffer.begin());
    held -= end;
  }
  return MaskResult::kMasked;
}
