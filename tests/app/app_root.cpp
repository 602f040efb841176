#include "app_root.h"

#include <algorithm>
#include <sstream>

#include "logclient/logclient.h"
#include "support/fake_root.h"
#include "support/files.h"

namespace apptest {

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

bool AllClassesAt(int level) {
  for (int logClass = 0; logClass < 60; ++logClass)
    if (log_get_class_level(logClass) != level) return false;
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
