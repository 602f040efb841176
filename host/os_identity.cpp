#include "host/os_identity.h"

#include <algorithm>
#include <cctype>

namespace {

void RemoveLineFeeds(std::string& text) { std::erase(text, '\n'); }

size_t LineEnd(const std::string& text, size_t from) {
  size_t end = text.find('\n', from);
  return end == std::string::npos ? text.size() : end;
}

// The value behind key up to the line end, taken as it stands.
std::string RawValue(const std::string& text, const char* key) {
  size_t at = text.find(key);
  if (at == std::string::npos) return "";
  size_t start = at + std::char_traits<char>::length(key);
  return text.substr(start, LineEnd(text, start) - start);
}

// The value behind key without its first and last character (the quotes of
// KEY="value"); on a last line without a line feed only the first goes.
std::string QuotedValue(const std::string& text, const char* key) {
  size_t at = text.find(key);
  if (at == std::string::npos) return "";
  size_t start = at + std::char_traits<char>::length(key) + 1;
  if (start >= text.size()) return "";
  size_t end = text.find('\n', start - 1);
  end = end == std::string::npos ? text.size() : end - 1;
  return start < end ? text.substr(start, end - start) : "";
}

std::string JoinNameAndVersion(const std::string& name, const std::string& version) {
  std::string joined = name;
  if (!name.empty() && !version.empty()) joined += ' ';
  joined += version;
  RemoveLineFeeds(joined);
  return joined;
}

std::string CollapseSpaces(const std::string& text) {
  std::string collapsed;
  for (char c : text)
    if (c != ' ' || collapsed.empty() || collapsed.back() != ' ') collapsed += c;
  return collapsed;
}

bool IsAsciiAlnum(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

}  // namespace

std::string GetOsIdentification(const OsQueryLimits* limits) {
  std::string s = ReadSystemInfoFile(limits);
  if (!ContainsMarker(s, "THINPRO")) {
    s = ReadKernelRelease(limits);
    if (!ContainsMarker(s, "DELL") && !ContainsMarker(s, "ELUX") && !ContainsMarker(s, "UNICON")) {
      s = ReadThinClientInfo(limits);
      if (!ContainsMarker(s, "10ZIG")) s = ReadOsRelease(limits);
    }
  }
  if (s.empty()) return "";
  return SanitizeOsToken(CollapseSpaces(s));
}

bool ContainsMarker(const std::string& text, const char* marker) {
  if (marker == nullptr) return false;
  std::string folded = text;
  std::transform(folded.begin(), folded.end(), folded.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return folded.find(marker) != std::string::npos;
}

std::string SanitizeOsToken(const std::string& text) {
  std::string token;
  for (char c : text) {
    if (IsAsciiAlnum(c) || c == '-' || c == '.')
      token += c;
    else if (c == ' ' || c == '_')
      token += '-';
  }
  return token;
}

std::string ParseSystemInfoText(const std::string& text) {
  return JoinNameAndVersion(QuotedValue(text, "PRODUCT_NAME="),
                            QuotedValue(text, "PRODUCT_VERSION="));
}

std::string ParseThinClientInfoText(const std::string& text) {
  return JoinNameAndVersion(RawValue(text, "thinclient-name:"),
                            RawValue(text, "thinclient-version:"));
}

std::string ParseOsReleaseText(const std::string& text) {
  std::string pretty = QuotedValue(text, "PRETTY_NAME=");
  RemoveLineFeeds(pretty);
  return pretty;
}
