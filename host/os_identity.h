#pragma once
// Names the operating system in one short token, e.g. "Ubuntu-22.04.3-LTS".
#include <cstdint>
#include <string>

struct OsQueryLimits {
  uint32_t pathBufferSize;
  uint32_t infoLineBufferSize;
  uint32_t lineBufferSize;
  uint32_t outputBufferSize;
};

// The sizes every caller of this utility passes.
inline constexpr OsQueryLimits kDefaultOsQueryLimits{1024, 1024, 128, 256};

std::string GetOsIdentification(const OsQueryLimits* limits);
std::string ReadSystemInfoFile(const OsQueryLimits* limits);
std::string ReadKernelRelease(const OsQueryLimits* limits);
std::string ReadThinClientInfo(const OsQueryLimits* limits);
std::string ReadOsRelease(const OsQueryLimits* limits);
bool ContainsMarker(const std::string& text, const char* marker);
std::string SanitizeOsToken(const std::string& text);

// Parsers over the text of the fixed files, so they can be tested without /etc.
std::string ParseSystemInfoText(const std::string& text);
std::string ParseThinClientInfoText(const std::string& text);
std::string ParseOsReleaseText(const std::string& text);
