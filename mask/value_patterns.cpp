#include "mask/value_patterns.h"

#include <cctype>
#include <cstdio>
#include <sstream>

namespace {

// Shapes of the values that need no list. IPv6 must have eight groups or a
// "::" so that times (12:30:45) and MACs stay out of it.
constexpr const char* kEmail = R"(\b[a-z0-9._%+-]+@[a-z0-9-]+(?:\.[a-z0-9-]+)*\.[a-z]{2,}\b)";
constexpr const char* kIpv6 =
    R"(\b(?:[0-9a-f]{1,4}:){7}[0-9a-f]{1,4}\b|\b(?:[0-9a-f]{1,4}:){1,6}(?::[0-9a-f]{1,4}){1,6}\b|::(?:[0-9a-f]{1,4}:){0,6}[0-9a-f]{1,4}\b)";
constexpr const char* kMac = R"(\b[0-9a-f]{2}(?:[:-][0-9a-f]{2}){5}\b)";
constexpr const char* kIpv4 = R"(\b(?:(?:25[0-5]|2[0-4][0-9]|1[0-9][0-9]|[1-9]?[0-9])\.){3}(?:25[0-5]|2[0-4][0-9]|1[0-9][0-9]|[1-9]?[0-9])\b)";
constexpr const char* kLabels = R"((?:[a-z0-9-]+\.)+)";

bool IsWordByte(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// Every byte but letters and digits as \xHH: the one escape both engines read alike.
std::string Literal(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (std::isalnum(static_cast<unsigned char>(c))) {
      escaped += c;
      continue;
    }
    char hex[5];
    std::snprintf(hex, sizeof hex, "\\x%02x", static_cast<unsigned char>(c));
    escaped += hex;
  }
  return escaped;
}

// text as a whole word: a boundary where its end is a word character.
std::string WholeWord(const std::string& text) {
  const std::string front = IsWordByte(text.front()) ? "\\b" : "";
  const std::string back = IsWordByte(text.back()) ? "\\b" : "";
  return front + Literal(text) + back;
}

// The scanner reads only the lines a value ends on, so no value may span a
// line end: a word given with one is masked line by line.
void AddWords(std::vector<ValuePattern>& patterns, ValueKind kind, const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    std::istringstream lines(word);
    for (std::string line; std::getline(lines, line);)
      if (!line.empty()) patterns.push_back({kind, WholeWord(line)});
  }
}

}  // namespace

std::string DomainOf(const std::string& host) {
  const size_t dot = host.find('.');
  if (dot == std::string::npos) return "";
  const std::string domain = host.substr(dot + 1);
  return domain.find('.') == std::string::npos ? "" : domain;
}

std::vector<ValuePattern> BuildValuePatterns(const LocalValues& values) {
  std::vector<ValuePattern> patterns;
  AddWords(patterns, ValueKind::kHome, {values.home});
  patterns.push_back({ValueKind::kEmail, kEmail});
  AddWords(patterns, ValueKind::kHost, values.hosts);
  for (const std::string& host : values.hosts)
    if (const std::string domain = DomainOf(host); !domain.empty())
      patterns.push_back({ValueKind::kHost, std::string("\\b") + kLabels + Literal(domain) + "\\b"});
  patterns.push_back({ValueKind::kIpv6, kIpv6});
  patterns.push_back({ValueKind::kMac, kMac});
  patterns.push_back({ValueKind::kIpv4, kIpv4});
  AddWords(patterns, ValueKind::kUser, values.users);
  AddWords(patterns, ValueKind::kWord, values.words);
  return patterns;
}
