// The issue-reproduction folder, the recent-logs check, the two single files
// staged at the start of a run and the marker that turns kvlog logging on.
#include <sys/stat.h>

#include <fstream>

#include "app/app.h"
#include "app/constants.h"

namespace {

std::string KvlogMarkerPath(const App& app) {
  return JoinPath(app.homeFolder.string(), constants::kKvlogMarker).string();
}

}  // namespace

bool App::CreateIssueReproduceFolder() { return RunCommand({"mkdir", "-p", issueFolder.string()}, 0); }

bool App::IssueReproduceFolderExists() {
  struct stat info {};
  if (stat(issueFolder.c_str(), &info) != 0) return false;
  // Only the one bit, not the whole type field: kept as the client has always tested it.
  return (info.st_mode & 040000) != 0;
}

bool App::RecentLogsExist() {
  // The user's copy of the client log is refreshed whatever the answer is.
  CopyFile(systemClientLog, existingClientLog);
  for (const auto* file : {&issueClientLog, &issueKeywardLog, &issueKvlogLatest, &issueActivityLogLatest}) {
    std::ifstream in(*file);
    if (in.is_open()) return true;
  }
  return false;
}

bool App::StageClientLog() { return CopyFile(systemClientLog, issueClientLog); }

bool App::StageKeywardLog() { return CopyFile(existingKeywardLog, issueKeywardLog); }

bool App::EnableKvlog() {
  const std::string marker = KvlogMarkerPath(*this);
  if (std::ifstream(marker).is_open()) return true;
  // The client only looks for the file; it stays empty.
  std::ofstream created(marker);
  return created.is_open();
}

bool App::DisableKvlog() { return RunCommand({"rm", "-f", KvlogMarkerPath(*this)}, 0); }
