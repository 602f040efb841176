#include "app/app.h"

#include <cstdlib>

#include "app/constants.h"
#include "host/install_root.h"

using namespace constants;

App* gApp = nullptr;

std::filesystem::path JoinPath(std::string_view left, std::string_view right) {
  std::string joined(left);
  if (!left.empty() && left.back() != '/' && !right.empty() && right.front() != '/') joined += '/';
  joined += right;
  return joined;
}

App::App() {
  // A missing HOME ends start-up here: std::string from a null pointer throws.
  homeFolder = std::string(std::getenv("HOME"));
  installRoot = FindInstallRoot();

  const std::string home = homeFolder.string();
  const std::string root = installRoot.string();
  const std::string issue = home + std::string(kIssueFolder);
  const std::string logs = home + std::string(kLogsFolder);

  issueClientLog = JoinPath(issue, kClientLogName);
  issueKeywardLog = JoinPath(issue, kKeywardLogName);
  issueKvlogPattern = JoinPath(issue, kKvlogPattern);
  issueKvlogLatest = JoinPath(issue, kKvlogLatest);
  issueActivityLogPattern = JoinPath(issue, kActivityLogPattern);
  issueActivityLogLatest = JoinPath(issue, kActivityLogLatest);
  issueArchive = JoinPath(issue, kIssueArchiveName);
  issueClientLogCopy = JoinPath(issue, kClientLogName);
  issueSystemInfo = JoinPath(issue, kSystemInfoName);
  existingClientLog = JoinPath(logs, kClientLogName);
  existingKeywardLog = JoinPath(logs, kKeywardLogName);
  existingKvlogPattern = JoinPath(logs, kKvlogPattern);
  existingActivityLogPattern = JoinPath(logs, kActivityLogPattern);
  systemClientLog = JoinPath(kSystemLogFolder, kClientLogName);
  existingArchive = JoinPath(logs, kExistingArchiveName);
  issueFolder = issue;
  logsFolder = logs;
  existingClientLogCopy = JoinPath(logs, kClientLogName);
  keywardConfigCopy = JoinPath(logs, kKeywardConfigName);
  existingSystemInfo = JoinPath(logs, kSystemInfoName);
  envdumpTool = JoinPath(root, kEnvdumpTool);
  existingEnvdumpReport = JoinPath(logs, kEnvdumpName);
  issueEnvdumpReport = JoinPath(issue, kEnvdumpName);
  desklineCheckScript = JoinPath(root, kDesklineCheckTool);
  existingDesklineCheckReport = JoinPath(logs, kDesklineCheckName);
  issueDesklineCheckReport = JoinPath(issue, kDesklineCheckName);
  tempListFile = JoinPath(home, kTempListName);
}
