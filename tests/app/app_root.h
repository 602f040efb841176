#pragma once
// Fixtures of the window tests and of the tests that run logmgr itself.
#include <filesystem>
#include <string>
#include <vector>

namespace apptest {

// A client install root the window runs from: the fake client parts, the
// window description and images of the source tree, a configuration file and
// diagnostics tools that succeed quickly.
void MakeWindowInstallRoot(const std::filesystem::path& root);
inline constexpr const char* kKeywardConfigText = "<KeywardConfig server=\"support-lab\"/>\n";

// The shared log configuration area below home, read as the client's other
// programs read the file.
inline constexpr size_t kAreaSize = 516;
std::filesystem::path LogAreaFile(const std::filesystem::path& home);
int ReadClassLevel(const std::filesystem::path& home, int logClass);
std::string ReadLogPath(const std::filesystem::path& home);
bool AllClassesAt(const std::filesystem::path& home, int level);

// Member names of a .tar.gz, sorted, and the content of one member.
std::vector<std::string> ArchiveMembers(const std::filesystem::path& archive);
std::string ArchiveMember(const std::filesystem::path& archive, const std::string& name);

}  // namespace apptest
