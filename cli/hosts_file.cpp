#include "cli/hosts_file.h"

#include <fstream>

#include "app/i18n.h"

namespace {

std::string Trimmed(const std::string& line) {
  const std::string withoutComment = line.substr(0, line.find('#'));
  const size_t first = withoutComment.find_first_not_of(" \t\r");
  if (first == std::string::npos) return {};
  const size_t last = withoutComment.find_last_not_of(" \t\r");
  return withoutComment.substr(first, last - first + 1);
}

}  // namespace

bool ReadHostsFile(const std::filesystem::path& file, std::vector<std::string>& hosts, std::string& error) {
  std::ifstream in(file);
  if (!in) {
    error = FormatMessage(_("Cannot read the hosts file %s."), file.c_str());
    return false;
  }
  for (std::string line; std::getline(in, line);)
    if (std::string host = Trimmed(line); !host.empty()) hosts.push_back(std::move(host));
  return true;
}

std::string HostNameProblem(const std::string& host) {
  if (host.empty() || host.front() == '-' || host.find_first_of("/ \t") != std::string::npos || host == "." ||
      host == "..")
    return FormatMessage(_("Not a host name: \"%s\"."), host.c_str());
  return {};
}
