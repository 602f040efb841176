// Lists the rotating log families with "find" and brings log files into the
// folder that is about to be archived.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "app/app.h"
#include "app/constants.h"
#include "host/install_root.h"

namespace fs = std::filesystem;

namespace {

// Only the pattern is quoted, so that the shell leaves it to find.
std::string FindCommandText(const fs::path& folder, const std::string& pattern, const fs::path& listFile) {
  return "find " + folder.string() + " -type f -name '" + pattern + "'" + " > " + listFile.string();
}

void AppendListedPaths(std::istream& in, App::FileList& list) {
  std::string line;
  while (std::getline(in, line)) {
    while (!line.empty() && line.back() == '\n') line.pop_back();
    list.emplace_back(line);
  }
}

}  // namespace

void App::FindFiles(const fs::path& folder, const std::string& pattern, FileList& list) {
  const std::string command = FindCommandText(folder, pattern, tempListFile);
  if (std::system(command.c_str()) != 0) {
    std::cerr << "Error executing find command." << std::endl;
    return;
  }
  std::error_code ignored;
  std::ifstream in(tempListFile);
  if (!in.is_open()) {
    std::cerr << "Error opening temporary file." << std::endl;
    fs::remove(tempListFile, ignored);
    return;
  }
  AppendListedPaths(in, list);
  in.close();
  fs::remove(tempListFile, ignored);
}

void App::FindActivityAndKvlogs(FileList& list, const fs::path& folder) {
  // "userActivity*" on purpose: every file whose name starts so belongs to the family.
  FindFiles(folder, "userActivity*", list);
  FindFiles(folder, "kvlog*", list);
}

bool App::CopyKvlogsToIssueFolder() { return CopyFileNoFolders(existingKvlogPattern, issueFolder); }

bool App::CopyActivityLogsToIssueFolder() {
  return CopyFileNoFolders(existingActivityLogPattern, issueFolder);
}

bool App::StageKeywardConfig(const fs::path& destination) {
  const fs::path source = JoinPath(FindInstallRoot(), constants::kKeywardConfigSource);
  return CopyFile(source, destination);
}
