#include "mask/local_values.h"

#include <netdb.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

namespace {

// A literal address is masked by its shape already, as an address.
bool IsAddress(const std::string& text) {
  return text.find_first_not_of("0123456789abcdefABCDEF.:[]") == std::string::npos;
}

void AddHost(std::vector<std::string>& hosts, const std::string& host) {
  if (host.empty() || IsAddress(host) || host == "localhost") return;
  if (std::find(hosts.begin(), hosts.end(), host) == hosts.end()) hosts.push_back(host);
}

std::string Attribute(const std::string& element, const char* name) {
  const std::string key = std::string(" ") + name + "=\"";
  const size_t at = element.find(key);
  if (at == std::string::npos) return "";
  const size_t from = at + key.size();
  const size_t to = element.find('"', from);
  return to == std::string::npos ? "" : element.substr(from, to - from);
}

void AddMachineNames(std::vector<std::string>& hosts) {
  char name[256] = {};
  if (gethostname(name, sizeof name - 1) != 0) return;
  AddHost(hosts, name);
  addrinfo hints{};
  hints.ai_flags = AI_CANONNAME;
  addrinfo* found = nullptr;
  if (getaddrinfo(name, nullptr, &hints, &found) != 0) return;
  if (found->ai_canonname != nullptr) AddHost(hosts, found->ai_canonname);
  freeaddrinfo(found);
}

// Login and the first field of the real name, with the name's single words
// too when it has several ("Jane Q. Doe" hides "Doe" on its own as well).
void AddUserNames(std::vector<std::string>& users) {
  const passwd* entry = getpwuid(getuid());
  if (entry == nullptr) return;
  users.emplace_back(entry->pw_name);
  std::string realName(entry->pw_gecos != nullptr ? entry->pw_gecos : "");
  realName = realName.substr(0, realName.find(','));
  if (realName.empty() || realName == entry->pw_name) return;
  users.push_back(realName);
  std::istringstream parts(realName);
  for (std::string part; parts >> part;)
    if (part.size() > 2 && part != realName) users.push_back(part);
}

}  // namespace

std::vector<std::string> ConfiguredHosts(const std::filesystem::path& configuration) {
  std::ifstream in(configuration);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::vector<std::string> hosts;
  for (size_t at = text.find("<Server"); at != std::string::npos; at = text.find("<Server", at + 1)) {
    const std::string element = text.substr(at, text.find('>', at) - at);
    AddHost(hosts, Attribute(element, "address"));
    AddHost(hosts, Attribute(element, "host"));
  }
  return hosts;
}

bool ReadWordFile(const std::filesystem::path& file, std::vector<std::string>& words) {
  std::ifstream in(file);
  if (!in) return false;
  for (std::string line; std::getline(in, line);) {
    line.erase(line.find_last_not_of(" \t\r") + 1);
    line.erase(0, line.find_first_not_of(" \t"));
    if (!line.empty()) words.push_back(line);
  }
  return true;
}

LocalValues GatherLocalValues(const std::string& installRoot, const std::string& home,
                              std::vector<std::string> extraWords) {
  LocalValues values;
  AddMachineNames(values.hosts);
  for (const std::string& host : ConfiguredHosts(std::filesystem::path(installRoot) / "config/KeywardConfig.xml"))
    AddHost(values.hosts, host);
  AddUserNames(values.users);
  values.words = std::move(extraWords);
  values.home = home;
  while (values.home.size() > 1 && values.home.back() == '/') values.home.pop_back();
  if (values.home == "/") values.home.clear();
  return values;
}
