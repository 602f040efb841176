// The gzip tar archive of a collection, stored flat by base name.
#include "collect/archive.h"

#include <filesystem>
#include <locale>
#include <sstream>

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

std::string FormatTimestamp(const std::tm& when) {
  // No AM/PM field: 01:05 and 13:05 read the same, as they always have.
  static constexpr std::string_view kFormat = "%A, %B %d, %Y, %I:%M:%S %Z (%z)";
  std::ostringstream text;
  const auto& facet = std::use_facet<std::time_put<char>>(text.getloc());
  facet.put(text, text, ' ', &when, kFormat.data(), kFormat.data() + kFormat.size());
  return text.str();
}

std::string App::TimestampText() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return FormatTimestamp(local);
}
