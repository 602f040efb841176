#pragma once
// Fixtures shared by the window tests and the end-to-end test of logmgr.
#include <filesystem>
#include <string>
#include <vector>

namespace apptest {

// A client install root the window can run from: the fake client parts, the
// window description and images of the source tree, a configuration file and
// diagnostics tools that succeed quickly.
void MakeWindowInstallRoot(const std::filesystem::path& root);

// Content of the configuration file placed below such a root.
inline constexpr const char* kKeywardConfigText = "<KeywardConfig server=\"support-lab\"/>\n";

// The shared log configuration area file as other client programs see it.
inline constexpr int kLogClassCount = 60;
inline constexpr size_t kAreaSize = 516;
std::filesystem::path LogAreaFile(const std::filesystem::path& home);
// Writes an initialised area with class 0 at level0, the given extra class levels
// and the given log path, the way a client that ran before leaves it.
void WriteLogArea(const std::filesystem::path& home, int level0, int otherClass, int otherLevel,
                  const std::string& logPath);
int ReadClassLevel(const std::filesystem::path& home, int logClass);
std::string ReadLogPath(const std::filesystem::path& home);
bool AllClassesAt(const std::filesystem::path& home, int level);

// Member names of a .tar.gz, in archive order.
std::vector<std::string> ArchiveMembers(const std::filesystem::path& archive);
// Content of one member.
std::string ArchiveMember(const std::filesystem::path& archive, const std::string& name);

}  // namespace apptest
