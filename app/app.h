#pragma once
// The one application object: every path the flows work on (fixed at
// construction from HOME and the install root), the window's widgets and the
// run state. Shell operations live in app/, engine operations in collect/.
#include <gtk/gtk.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Joins with a "/" only when left is non-empty and does not end in "/" and
// right is non-empty and does not begin with "/"; otherwise concatenates.
std::filesystem::path JoinPath(std::string_view left, std::string_view right);

// Message kinds of App::ShowMessage.
enum MessageKind { kMessageError = 0, kMessageQuestion = 1, kMessageInformation = 2 };

class App {
 public:
  using FileList = std::vector<std::filesystem::path>;

  App();
  App(const App&) = delete;
  App& operator=(const App&) = delete;

  // --- shell (app/) ---
  void Run();
  void ShowInitialState();
  int ShowMessage(GtkWidget* parent, int kind, const std::string& text);
  void ShowError(GtkWidget* parent, const std::string& text);
  int AskToContinue(GtkWidget* parent, const std::string& text);
  void ShowCollectingState();
  void ShowIdleState(int failed);
  void ShowLastSaved();
  void ShowSavedState();
  void SaveOrView(GtkWidget* window);
  void SaveIssueLogs(GtkWidget* window);
  void ToggleIssueReproduction(GtkWidget* window);
  void StartIssueReproduction(GtkWidget* window);
  void StopIssueReproduction(GtkWidget* window);
  void RaiseAllLogLevels();
  void SetAllLogLevels(int level);
  void CollectExistingLogs(GtkWidget* window);

  // --- engine: command runner (collect/runner.cpp) ---
  bool RunCommand(const std::vector<std::string>& argv, int expectedExit);
  bool IsXdgOpenAvailable();
  bool CopyFile(const std::filesystem::path& source, const std::filesystem::path& destination);
  bool CopyFileNoFolders(const std::filesystem::path& source, const std::filesystem::path& destination);
  bool RemoveStagedFiles();

  // --- engine: staging (collect/staging.cpp) ---
  bool CreateIssueReproduceFolder();
  bool IssueReproduceFolderExists();
  bool RecentLogsExist();
  bool StageClientLog();
  bool StageKeywardLog();
  bool EnableKvlog();
  bool DisableKvlog();

  // --- engine: gathering (collect/gathering.cpp) ---
  void FindFiles(const std::filesystem::path& folder, const std::string& pattern, FileList& list);
  void FindActivityAndKvlogs(FileList& list, const std::filesystem::path& folder);
  bool CopyKvlogsToIssueFolder();
  bool CopyActivityLogsToIssueFolder();
  bool StageKeywardConfig(const std::filesystem::path& destination);

  // --- engine: archive (collect/archive.cpp) and its time stamp (collect/timestamp.cpp) ---
  int CreateArchive(const FileList& list, const std::string& archivePath);
  std::string TimestampText();

  // --- engine: save and view (collect/save_view.cpp) ---
  bool SaveArchiveDialog(const std::filesystem::path& archive, const std::string& defaultName,
                         GtkWidget* parent);
  void ViewSavedLogs(GtkWidget* parent);
  // The accepted part of SaveArchiveDialog: remember, copy, report, clean up.
  bool CopyChosenArchive(const std::filesystem::path& archive, const std::filesystem::path& chosen,
                         GtkWidget* parent);

  // --- engine: the flows' window-free steps (collect/flow_steps.cpp) ---
  // The fixed members of each archive, before the log families are added.
  FileList ExistingLogsMembers() const;
  FileList IssueLogsMembers() const;
  // Reports, the existing-logs members and their archive: CreateArchive's code.
  int ArchiveExistingLogs();
  // Marker on, issue folder made when missing; false when it could not be made.
  bool PrepareIssueFolder();
  // Reports and staged logs in the issue folder, every class raised, log path pointed there.
  void BeginIssueCollection();
  // The run's logs copied in, marker removed, levels and log path put back.
  void EndIssueCollection();
  // The issue run's members and their archive: CreateArchive's code.
  int ArchiveIssueLogs();
  // The one place every member list passes, families added, before CreateArchive.
  int ArchiveCollection(FileList files, const std::filesystem::path& folder,
                        const std::filesystem::path& archive);

  // --- engine: diagnostics (collect/diagnostics.cpp) ---
  void CollectDiagnostics(const std::filesystem::path& folder);
  void WriteUserSystemInfo(const std::filesystem::path& reportPath);
  std::vector<std::string> ListClientProcesses();
  std::string RunPgrep(const std::string& name);
  bool RunEnvdump(const std::filesystem::path& reportPath);
  bool RunDesklineCheck(const std::filesystem::path& reportPath);

  // --- path set, in declaration order ---
  std::filesystem::path issueClientLog;
  std::filesystem::path issueKeywardLog;
  std::filesystem::path issueKvlogPattern;
  std::filesystem::path issueKvlogLatest;
  std::filesystem::path issueActivityLogPattern;
  std::filesystem::path issueActivityLogLatest;
  std::filesystem::path issueClientLogCopy;
  std::filesystem::path existingSystemInfo;
  std::filesystem::path existingClientLog;
  std::filesystem::path systemClientLog;
  std::filesystem::path issueFolder;
  std::filesystem::path logsFolder;
  std::filesystem::path homeFolder;
  std::filesystem::path keywardConfigCopy;
  std::filesystem::path issueSystemInfo;
  std::filesystem::path existingKeywardLog;
  std::filesystem::path existingKvlogPattern;
  std::filesystem::path existingActivityLogPattern;
  std::filesystem::path existingClientLogCopy;
  std::filesystem::path existingArchive;
  std::filesystem::path issueArchive;
  std::filesystem::path savedLogsLocation;
  std::filesystem::path installRoot;
  std::filesystem::path envdumpTool;
  std::filesystem::path existingEnvdumpReport;
  std::filesystem::path issueEnvdumpReport;
  std::filesystem::path desklineCheckScript;
  std::filesystem::path existingDesklineCheckReport;
  std::filesystem::path issueDesklineCheckReport;
  std::filesystem::path tempListFile;

  // Sees, and may replace, each complete member list just before its archive is made.
  std::function<void(FileList&)> archiveListHook;

  std::string lastSavedText;
  GtkBuilder* builder = nullptr;  // lives as long as the process

  // Widgets of the window description; not owned.
  GtkWidget* topText = nullptr;
  GtkWidget* lastLogLabel = nullptr;
  GtkWidget* logCollectionText = nullptr;
  GtkWidget* spinner = nullptr;
  GtkWidget* stopText = nullptr;
  GtkWidget* collectExistingText = nullptr;
  GtkWidget* saveButton = nullptr;
  GtkWidget* startStopButton = nullptr;
  GtkWidget* existingLogButton = nullptr;
  GtkWidget* ruler = nullptr;

  int32_t collecting = 0;  // 0 idle, 1 run under way, 2 run ended with an archive
  int32_t saveButtonIsView = 0;
  int32_t savedLogLevel = 0;
};

// The process-wide application object that the signal handlers reach.
extern App* gApp;

// Signal handlers of the main window.
extern "C" {
gboolean OnMainWindowDelete(GtkWidget* widget, GdkEvent* event, gpointer data);
void OnStartStopClicked(GtkButton* button, gpointer window);
void OnSaveClicked(GtkButton* button, gpointer window);
void OnCollectExistingClicked(GtkButton* button, gpointer window);
}
