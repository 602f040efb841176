#include "app_root.h"

#include <algorithm>
#include <cstring>
#include <sstream>

#include "support/fake_root.h"
#include "support/files.h"

namespace apptest {
namespace {

constexpr size_t kLevelsOffset = 4;
constexpr size_t kPathOffset = 244;
constexpr size_t kPathSize = 256;

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

int ReadClassLevel(const std::filesystem::path& home, int logClass) {
  int32_t level = 0;
  std::memcpy(&level, ReadArea(home).data() + kLevelsOffset + 4 * logClass, 4);
  return level;
}

std::string ReadLogPath(const std::filesystem::path& home) {
  const std::string field = ReadArea(home).substr(kPathOffset, kPathSize);
  return field.substr(0, field.find('\0'));
}

bool AllClassesAt(const std::filesystem::path& home, int level) {
  for (int logClass = 0; logClass < 60; ++logClass)
    if (ReadClassLevel(home, logClass) != level) return false;
  return true;
}

std::vector<std::string> ArchiveMembers(const std::filesystem::path& archive) {
  std::istringstream in(testsupport::RunAndCapture("tar -tzf '" + archive.string() + "' 2>/dev/null"));
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  return lines;
}

std::string ArchiveMember(const std::filesystem::path& archive, const std::string& name) {
  return testsupport::RunAndCapture("tar -xzOf '" + archive.string() + "' '" + name + "' 2>/dev/null");
}

}  // namespace apptest
