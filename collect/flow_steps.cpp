// The window-free steps of the two collecting flows, shared by the window and
// by logmgr-cli so that both put the same members into an archive.
#include "app/app.h"
#include "logclient/logclient.h"

namespace fs = std::filesystem;

App::FileList App::ExistingLogsMembers() const {
  // The diagnostics step has just copied the install root's configuration onto
  // issueClientLogCopy, so the archive carries it under "ORBClient.log".
  return {existingKeywardLog, existingClientLogCopy, existingSystemInfo,
          issueClientLogCopy, existingEnvdumpReport, existingDesklineCheckReport};
}

App::FileList App::IssueLogsMembers() const {
  return {issueKeywardLog, issueClientLog, issueSystemInfo, keywardConfigCopy, issueEnvdumpReport,
          issueDesklineCheckReport};
}

int App::ArchiveExistingLogs() {
  CollectDiagnostics(logsFolder);
  return ArchiveCollection(ExistingLogsMembers(), logsFolder, existingArchive);
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

int App::ArchiveIssueLogs() { return ArchiveCollection(IssueLogsMembers(), issueFolder, issueArchive); }

int App::ArchiveCollection(FileList files, const fs::path& folder, const fs::path& archive) {
  FindActivityAndKvlogs(files, folder);
  if (archiveListHook) archiveListHook(files);
  return CreateArchive(files, archive.string());
}
