#pragma once
// The hosts of a fan-out run: one per line in a hosts file, and the checks
// every host name passes before it is handed to ssh.
#include <filesystem>
#include <string>
#include <vector>

// Appends the file's hosts to hosts, skipping blank lines and "#" comments
// (whole-line or trailing). False, with error set, when it cannot be read.
bool ReadHostsFile(const std::filesystem::path& file, std::vector<std::string>& hosts, std::string& error);

// Empty when host can be given to ssh and named as DIR/HOST.tar.gz; else why
// not. A leading "-" would be read by ssh as an option, a "/" would put the
// archive into another folder.
std::string HostNameProblem(const std::string& host);
