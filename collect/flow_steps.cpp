// The window-free steps of the two collecting flows, shared by the window and
// by logmgr-cli so that both put the same members into an archive.
#include "app/app.h"
#include "logclient/logclient.h"

namespace fs = std::filesystem;

int App::ArchiveExistingLogs() {
  CollectDiagnostics(logsFolder);
  // The diagnostics step has just copied the install root's configuration onto
  // issueClientLogCopy, so the archive carries it under "ORBClient.log".
  FileList files{existingKeywardLog, existingClientLogCopy, existingSystemInfo,
                 issueClientLogCopy, existingEnvdumpReport, existingDesklineCheckReport};
  return ArchiveCollection(std::move(files), logsFolder, existingArchive);
}

bool App::PrepareIssueFolder() {
  EnableKvlog();
  return IssueReproduceFolderExists() || CreateIssueReproduceFolder();
}

void App::BeginIssueCollection() {
  CollectDiagnostics(issueFolder);
  StageKeywardLog();
  StageClientLog();
  RaiseAllLogLevels();
}

void App::EndIssueCollection() {
  CopyActivityLogsToIssueFolder();
  CopyKvlogsToIssueFolder();
  DisableKvlog();
  // Every class gets class 0's former level, whatever it had before the run.
  SetAllLogLevels(savedLogLevel);
  log_set_shared_path(existingClientLog.c_str());
}

int App::ArchiveIssueLogs() {
  FileList files{issueKeywardLog,   issueClientLog,     issueSystemInfo,
                 keywardConfigCopy, issueEnvdumpReport, issueDesklineCheckReport};
  return ArchiveCollection(std::move(files), issueFolder, issueArchive);
}

int App::ArchiveCollection(FileList files, const fs::path& folder, const fs::path& archive) {
  FindActivityAndKvlogs(files, folder);
  if (archiveListHook) archiveListHook(files);
  return CreateArchive(files, archive.string());
}
