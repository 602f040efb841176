#pragma once
// What names this machine, its client and its user: the values masked
// wherever they appear, on top of the addresses found by their shape.
#include <filesystem>
#include <string>
#include <vector>

#include "mask/value_patterns.h"

// The machine's name and FQDN, the server hosts of the install root's
// config/KeywardConfig.xml, the login and real name of the password entry,
// home, and the extra words.
LocalValues GatherLocalValues(const std::string& installRoot, const std::string& home,
                              std::vector<std::string> extraWords);

// The host names the configuration's Server elements give (address= and host=).
std::vector<std::string> ConfiguredHosts(const std::filesystem::path& configuration);

// One word per line of file, blank lines skipped; false when it cannot be read.
bool ReadWordFile(const std::filesystem::path& file, std::vector<std::string>& words);
