#pragma once
// Where a finished archive goes: a file, or standard output ("-"), which then
// carries the archive alone.
#include <filesystem>
#include <string>

class ArchiveOutput {
 public:
  // With "-", everything else this process (and its children) writes to
  // standard output goes to standard error from here on.
  explicit ArchiveOutput(std::string destination);
  ~ArchiveOutput();
  ArchiveOutput(const ArchiveOutput&) = delete;
  ArchiveOutput& operator=(const ArchiveOutput&) = delete;

  // Copies the archive there: exitcode::kWritten, or kArchiveFailed after
  // one line on standard error (a file is then not left half written).
  int Write(const std::filesystem::path& archive);

 private:
  int WriteToFile(const std::filesystem::path& archive);

  std::string destination_;
  int archiveFd_ = -1;  // the real standard output, when the archive goes there
};

class App;

// Turns the engine's archive code into the command's exit code: a made
// archive goes to output and the staged files are removed, as after the
// window's save; 1 and 2 get their one line (nothing found at emptyFolder).
int DeliverArchive(App& app, int archiveCode, const std::filesystem::path& archive, ArchiveOutput& output,
                   const std::filesystem::path& emptyFolder);
