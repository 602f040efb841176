#pragma once
// The stand-in of every value ever masked on this machine, kept in a JSON
// file of its own (mode 0600) so that later archives use the same ones.
#include <filesystem>
#include <map>
#include <string>

#include "mask/value_patterns.h"

class StandInMap {
 public:
  // An absent file is an empty map; false when it exists but cannot be read.
  bool Load(const std::filesystem::path& file);
  // Written beside the file and renamed over it, mode 0600 from the start.
  bool Save(const std::filesystem::path& file) const;

  // The stand-in value has already, or null.
  const std::string* Find(ValueKind kind, const std::string& value) const;
  // The stand-in of value, made on first sight in the shape of its kind.
  const std::string& StandIn(ValueKind kind, const std::string& value);
  // Gives value this stand-in unless it has one already.
  void Settle(ValueKind kind, const std::string& value, const std::string& standIn);

 private:
  static std::string MakeStandIn(ValueKind kind, size_t number);

  // By kind name, then by the value as found (hosts and addresses lower-cased).
  std::map<std::string, std::map<std::string, std::string>> values_;
};

// ~/.ORBClient/mask-map.json of the home folder.
std::filesystem::path DefaultMapFile(const std::string& home);
