// The gzip tar archive of a collection, stored flat by base name.
#include <filesystem>

#include "app/app.h"

namespace fs = std::filesystem;

int App::CreateArchive(const FileList& list, const std::string& archivePath) {
  // The transform cuts every member name to its last component.
  std::string command = "tar -czhPf " + archivePath + " --transform='s|^.*\\/||'";
  if (list.empty()) return 1;
  size_t counted = 0;
  for (const fs::path& file : list) {
    if (!fs::exists(fs::status(file))) continue;
    command += ' ';
    command += file.string();
    ++counted;
  }
  if (counted == 0) return 1;
  return RunCommand({"sh", "-c", command}, 0) ? 0 : 2;
}
