// Every file operation runs a standard tool as a child and is judged by its
// exit status; nothing here goes through a shell.
#include <filesystem>
#include <iostream>

#include "app/app.h"
#include "collect/child_process.h"

namespace fs = std::filesystem;

namespace {

// True for a normal exit with the expected code; the two failure lines are
// what a support engineer reads in the terminal.
bool JudgeWaitStatus(int status, int expectedExit) {
  const int low = status & 0x7f;
  if (low == 0) {
    const int code = (status >> 8) & 0xff;
    if (code == expectedExit) return true;
    std::cerr << "Child process terminated with exit status: " << code << std::endl;
    return false;
  }
  // 0x7f is a stopped child, and also what -1 from child_pclose looks like.
  if (low == 0x7f) return false;
  std::cerr << "Child process terminated with signal: " << low << std::endl;
  return false;
}

}  // namespace

bool App::RunCommand(const std::vector<std::string>& argv, int expectedExit) {
  // Mode "w" leaves the child's output on our own stdout and stderr; its
  // stdin is a pipe we never write to.
  ChildProcess child = ChildProcess::Start(argv, "w", "");
  if (!child.started()) return false;
  return JudgeWaitStatus(child.Close(), expectedExit);
}

bool App::IsXdgOpenAvailable() { return RunCommand({"which", "xdg-open"}, 0); }

bool App::CopyFile(const fs::path& source, const fs::path& destination) {
  // One level only: a deeper gap raises "cannot create directory" to the flow.
  if (!fs::exists(fs::status(destination))) fs::create_directory(destination.parent_path());
  return CopyFileNoFolders(source, destination);
}

bool App::CopyFileNoFolders(const fs::path& source, const fs::path& destination) {
  // Sources are often root's or a service account's; the copy must be the user's.
  return RunCommand({"cp", "--no-preserve=mode,ownership", source.string(), destination.string()}, 0);
}

bool App::RemoveStagedFiles() {
  return RunCommand({"rm", "-rf", issueClientLog.string(), issueKeywardLog.string(),
                     issueKvlogPattern.string(), issueActivityLogPattern.string()},
                    0);
}
