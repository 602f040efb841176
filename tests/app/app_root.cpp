#include "app_root.h"

#include <cstdint>
#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

#include "support/fake_root.h"
#include "support/files.h"

namespace apptest {
namespace {

constexpr uint32_t kAreaMagic = 0x12345678;
constexpr uint32_t kDefaultFlags = 0x167F;
constexpr size_t kLevelsOffset = 4;
constexpr size_t kPathOffset = 244;
constexpr size_t kPathSize = 256;
constexpr size_t kMagicOffset = 512;

void PutWord(std::string& area, size_t offset, uint32_t value) { std::memcpy(&area[offset], &value, 4); }

std::string ReadArea(const std::filesystem::path& home) {
  std::string area = testsupport::ReadFile(LogAreaFile(home));
  area.resize(kAreaSize, '\0');
  return area;
}

}  // namespace

void MakeWindowInstallRoot(const std::filesystem::path& root) {
  testsupport::MakeFakeInstallRoot(root);
  const std::filesystem::path source(NORVEX_SOURCE_DIR);
  std::filesystem::create_directory_symlink(source / "gtk", root / "gtk");
  std::filesystem::create_directory_symlink(source / "icons", root / "icons");
  testsupport::WriteFile(root / "config/KeywardConfig.xml", kKeywardConfigText);
  // The dump tool prints where it wrote its dump, as the client's tool does.
  testsupport::WriteScript(root / "util/envdump",
                           "out=\"$(dirname \"$0\")/envdump.out\"\necho \"PATH=$PATH\" > \"$out\"\necho \"$out\"");
  testsupport::WriteScript(root / "util/desklinecheck.sh", "echo \"client check: all services answer\"");
}

std::filesystem::path LogAreaFile(const std::filesystem::path& home) {
  return home.string() + "//.ORBClient/.nvxndclogconf";
}

void WriteLogArea(const std::filesystem::path& home, int level0, int otherClass, int otherLevel,
                  const std::string& logPath) {
  std::string area(kAreaSize, '\0');
  PutWord(area, 0, kDefaultFlags);
  PutWord(area, kLevelsOffset, static_cast<uint32_t>(level0));
  PutWord(area, kLevelsOffset + 4 * otherClass, static_cast<uint32_t>(otherLevel));
  std::memcpy(&area[kPathOffset], logPath.data(), std::min(logPath.size(), kPathSize));
  PutWord(area, 500, 200);
  PutWord(area, 504, 2);
  PutWord(area, 508, 200);
  PutWord(area, kMagicOffset, kAreaMagic);
  // Rewritten in place, so a process that has the file mapped sees the new bytes.
  std::filesystem::create_directories(LogAreaFile(home).parent_path());
  std::fstream out(LogAreaFile(home), std::ios::in | std::ios::out | std::ios::binary);
  if (!out.is_open()) out.open(LogAreaFile(home), std::ios::out | std::ios::binary);
  out.write(area.data(), static_cast<std::streamsize>(area.size()));
}

int ReadClassLevel(const std::filesystem::path& home, int logClass) {
  const std::string area = ReadArea(home);
  int32_t level = 0;
  std::memcpy(&level, &area[kLevelsOffset + 4 * logClass], 4);
  return level;
}

std::string ReadLogPath(const std::filesystem::path& home) {
  const std::string area = ReadArea(home);
  const std::string field = area.substr(kPathOffset, kPathSize);
  return field.substr(0, field.find('\0'));
}

bool AllClassesAt(const std::filesystem::path& home, int level) {
  for (int logClass = 0; logClass < kLogClassCount; ++logClass)
    if (ReadClassLevel(home, logClass) != level) return false;
  return true;
}

std::vector<std::string> ArchiveMembers(const std::filesystem::path& archive) {
  std::istringstream in(testsupport::RunAndCapture("tar -tzf '" + archive.string() + "' 2>/dev/null"));
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string ArchiveMember(const std::filesystem::path& archive, const std::string& name) {
  return testsupport::RunAndCapture("tar -xzOf '" + archive.string() + "' '" + name + "' 2>/dev/null");
}

}  // namespace apptest
