#pragma once
// What the window tests and the tests that run logmgr itself share: the
// install root logmgr runs from and the archives it writes.
#include <filesystem>
#include <string>
#include <vector>

namespace apptest {

// The fake client parts, the window description and images of the source
// tree, a configuration file and diagnostics tools that succeed quickly.
void MakeWindowInstallRoot(const std::filesystem::path& root);
inline constexpr const char* kKeywardConfigText = "<KeywardConfig server=\"support-lab\"/>\n";

// Whether every class of the shared area (as mapped by this process) is at level.
bool AllClassesAt(int level);

// Member names of a .tar.gz, sorted, and the content of one member.
std::vector<std::string> ArchiveMembers(const std::filesystem::path& archive);
std::string ArchiveMember(const std::filesystem::path& archive, const std::string& name);

}  // namespace apptest
