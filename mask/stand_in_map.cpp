#include "mask/stand_in_map.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>

#include "mask/write_all.h"

namespace fs = std::filesystem;

namespace {

const char* KindName(ValueKind kind) {
  switch (kind) {
    case ValueKind::kHome: return "home";
    case ValueKind::kEmail: return "email";
    case ValueKind::kHost: return "host";
    case ValueKind::kIpv6: return "ipv6";
    case ValueKind::kMac: return "mac";
    case ValueKind::kIpv4: return "ipv4";
    case ValueKind::kUser: return "user";
    case ValueKind::kWord: return "word";
  }
  return "word";
}

// Case does not make another host, address or mail box; it does make another word.
std::string Key(ValueKind kind, std::string value) {
  if (kind == ValueKind::kUser || kind == ValueKind::kWord || kind == ValueKind::kHome) return value;
  std::transform(value.begin(), value.end(), value.begin(), [](unsigned char c) { return std::tolower(c); });
  if (kind == ValueKind::kMac) std::replace(value.begin(), value.end(), '-', ':');
  return value;
}

std::string Printed(const char* format, size_t number) {
  char text[64];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

// 10.0.0.1 onwards, through 10.255.255.255.
std::string Ipv4StandIn(size_t n) {
  char text[32];
  std::snprintf(text, sizeof text, "10.%zu.%zu.%zu", (n >> 16) & 0xff, (n >> 8) & 0xff, n & 0xff);
  return text;
}

std::string MacStandIn(size_t n) {
  char text[32];
  std::snprintf(text, sizeof text, "02:00:00:%02zx:%02zx:%02zx", (n >> 16) & 0xff, (n >> 8) & 0xff, n & 0xff);
  return text;
}

bool WriteText(int fd, const std::string& text) { return WriteAll(fd, text.data(), text.size()); }

}  // namespace

fs::path DefaultMapFile(const std::string& home) { return fs::path(home) / ".ORBClient/mask-map.json"; }

bool StandInMap::Load(const fs::path& file) {
  std::ifstream in(file);
  if (!in) return !fs::exists(file);
  const nlohmann::json json = nlohmann::json::parse(in, nullptr, false);
  if (!json.is_object()) return false;
  for (const auto& [kind, values] : json.items()) {
    if (!values.is_object()) return false;
    for (const auto& [value, standIn] : values.items())
      if (standIn.is_string()) values_[kind][value] = standIn.get<std::string>();
  }
  return true;
}

bool StandInMap::Save(const fs::path& file) const {
  std::error_code ignored;
  fs::create_directories(file.parent_path(), ignored);
  std::string partial = file.string() + ".XXXXXX";
  const int fd = mkstemp(partial.data());  // 0600 before a single value is in it
  if (fd < 0) return false;
  bool saved = fchmod(fd, 0600) == 0 && WriteText(fd, nlohmann::json(values_).dump(2) + "\n") && fsync(fd) == 0;
  saved = close(fd) == 0 && saved;
  if (saved) saved = rename(partial.c_str(), file.c_str()) == 0;
  if (!saved) unlink(partial.c_str());
  return saved;
}

const std::string* StandInMap::Find(ValueKind kind, const std::string& value) const {
  const auto ofKind = values_.find(KindName(kind));
  if (ofKind == values_.end()) return nullptr;
  const auto known = ofKind->second.find(Key(kind, value));
  return known == ofKind->second.end() ? nullptr : &known->second;
}

const std::string& StandInMap::StandIn(ValueKind kind, const std::string& value) {
  if (const std::string* known = Find(kind, value)) return *known;
  auto& ofKind = values_[KindName(kind)];
  std::string standIn = MakeStandIn(kind, ofKind.size() + 1);
  return ofKind[Key(kind, value)] = std::move(standIn);
}

void StandInMap::Settle(ValueKind kind, const std::string& value, const std::string& standIn) {
  values_[KindName(kind)].try_emplace(Key(kind, value), standIn);
}

std::string StandInMap::MakeStandIn(ValueKind kind, size_t number) {
  switch (kind) {
    case ValueKind::kHome: return Printed("/home/home%04zu", number);
    case ValueKind::kEmail: return Printed("mail%04zu@mail.example", number);
    case ValueKind::kHost: return Printed("host%04zu.example", number);
    case ValueKind::kIpv6: return Printed("fd00::%zx", number);
    case ValueKind::kMac: return MacStandIn(number);
    case ValueKind::kIpv4: return Ipv4StandIn(number);
    case ValueKind::kUser: return Printed("user%04zu", number);
    case ValueKind::kWord: return Printed("word%04zu", number);
  }
  return "";
}
