#include "cli/archive_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "app/app.h"
#include "app/i18n.h"
#include "cli/exit_codes.h"
#include "cli/failure.h"
#include "mask/write_all.h"

namespace fs = std::filesystem;

namespace {

bool CopyFileTo(const fs::path& archive, int outFd) {
  const int inFd = open(archive.c_str(), O_RDONLY | O_CLOEXEC);
  if (inFd < 0) return false;
  char buffer[1 << 16];
  bool copied = true;
  for (;;) {
    const ssize_t got = read(inFd, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) {
      copied = got == 0;
      break;
    }
    if (!WriteAll(outFd, buffer, static_cast<size_t>(got))) {
      copied = false;
      break;
    }
  }
  close(inFd);
  return copied;
}

void ReportWriteFailure(const std::string& where) {
  ReportFailure(FormatMessage(_("Could not write the archive to \"%s\"."), where));
}

}  // namespace

ArchiveOutput::ArchiveOutput(std::string destination) : destination_(std::move(destination)) {
  if (destination_ != "-") return;
  archiveFd_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
  // Stray lines of the engine and of the tools it runs must not end up in the archive stream.
  dup2(STDERR_FILENO, STDOUT_FILENO);
}

ArchiveOutput::~ArchiveOutput() {
  if (archiveFd_ >= 0) close(archiveFd_);
}

int ArchiveOutput::Write(const fs::path& archive) {
  if (archiveFd_ < 0 && destination_ != "-") return WriteToFile(archive);
  if (archiveFd_ >= 0 && CopyFileTo(archive, archiveFd_)) return exitcode::kWritten;
  ReportWriteFailure(_("standard output"));
  return exitcode::kArchiveFailed;
}

int ArchiveOutput::WriteToFile(const fs::path& archive) {
  // Written beside the target (private, as mkstemp makes it) and renamed into
  // place, so a failure leaves no partial file.
  const fs::path target = fs::absolute(destination_);
  // Appended piece by piece: g++ 12 at -O3 warns falsely about "." + name.
  std::string partial = target.parent_path().string();
  partial.append("/.").append(target.filename().string()).append(".XXXXXX");
  const int fd = mkstemp(partial.data());
  bool done = fd >= 0 && CopyFileTo(archive, fd);
  if (fd >= 0) done = close(fd) == 0 && done;
  if (done) done = rename(partial.c_str(), target.c_str()) == 0;
  if (done) {
    ReportStatus(FormatMessage(_("Archive written to \"%s\"."), target.string()));
    return exitcode::kWritten;
  }
  if (fd >= 0) unlink(partial.c_str());
  ReportWriteFailure(destination_);
  return exitcode::kArchiveFailed;
}

int DeliverArchive(App& app, int archiveCode, const fs::path& archive, ArchiveOutput& output,
                   const fs::path& emptyFolder) {
  if (archiveCode == 1) {
    ReportFailure(FormatMessage(_("No files found at \"%s\"; there is nothing to archive."), emptyFolder.string()));
    return exitcode::kNothing;
  }
  if (archiveCode != 0) {
    ReportFailure(_("The tar archive could not be made."));
    return exitcode::kArchiveFailed;
  }
  const int written = output.Write(archive);
  if (written == exitcode::kWritten) app.RemoveStagedFiles();
  return written;
}
