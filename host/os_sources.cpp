// The sources behind the operating-system token: fixed files and fixed
// commands. Their texts are parsed in os_identity.cpp.
#include <algorithm>
#include <climits>
#include <cstdio>
#include <memory>
#include <new>
#include <string>

#include "host/os_identity.h"
#include "host/user_paths.h"

namespace {

constexpr const char* kSystemInfoFile = "/etc/systeminfo";
constexpr const char* kThinClientInfoFile = "/etc/tzagent/info";
constexpr const char* kOsReleaseFile = "/etc/os-release";
// Reads of the thin-client and release files use this fixed piece size.
constexpr unsigned kFixedPieceSize = 256;

struct PipeCloser {
  void operator()(FILE* stream) const { pclose(stream); }
};
using CommandOutput = std::unique_ptr<FILE, PipeCloser>;

// Reads a stream line by line in pieces of pieceSize bytes, each taken as a
// C string (so a NUL byte ends its piece).
std::string ReadInPieces(FILE* stream, unsigned pieceSize) {
  // fgets needs room for one character and the NUL to make progress.
  int size = static_cast<int>(std::clamp<unsigned>(pieceSize, 2u, INT_MAX));
  std::unique_ptr<char[]> piece(new (std::nothrow) char[size]);
  std::string text;
  if (!piece) return text;
  while (fgets(piece.get(), size, stream) != nullptr) text += piece.get();
  return text;
}

std::string WithoutLineFeeds(std::string text) {
  std::erase(text, '\n');
  return text;
}

std::string ReadFixedFile(const char* path, unsigned pieceSize) {
  FILE* file = fopen(path, "r");
  if (file == nullptr) return "";
  std::string text = ReadInPieces(file, pieceSize);
  fclose(file);
  return text;
}

std::string ReadCommandOutput(const char* command, unsigned pieceSize) {
  CommandOutput output(popen(command, "r"));
  return output ? ReadInPieces(output.get(), pieceSize) : "";
}

}  // namespace

std::string ReadSystemInfoFile(const OsQueryLimits* limits) {
  return ParseSystemInfoText(ReadFixedFile(kSystemInfoFile, limits->infoLineBufferSize));
}

std::string ReadThinClientInfo(const OsQueryLimits* limits) {
  FILE* stream = fopen(kThinClientInfoFile, "r");
  if (stream == nullptr && IsExecutableOnPath(limits->pathBufferSize, "/tcinfo"))
    stream = popen("tcinfo", "r");
  if (stream == nullptr) return "";
  std::string text = ReadInPieces(stream, kFixedPieceSize);
  // Closed as a plain file even when it is the command's output; its exit
  // status was never wanted.
  fclose(stream);
  return ParseThinClientInfoText(text);
}

std::string ReadKernelRelease(const OsQueryLimits* limits) {
  if (!IsExecutableOnPath(limits->pathBufferSize, "/uname")) return "";
  return WithoutLineFeeds(ReadCommandOutput("uname -or", limits->lineBufferSize));
}

std::string ReadOsRelease(const OsQueryLimits* limits) {
  // When the release command exists its answer is final, even an empty one.
  if (IsExecutableOnPath(limits->pathBufferSize, "/lsb_release"))
    return WithoutLineFeeds(ReadCommandOutput("lsb_release -d | cut -f2", limits->lineBufferSize));
  return ParseOsReleaseText(ReadFixedFile(kOsReleaseFile, kFixedPieceSize));
}
