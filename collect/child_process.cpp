#include "collect/child_process.h"

#include <unistd.h>

#include <utility>

#include "logclient/logclient.h"

namespace {

// Straight to the descriptor: in the forked copy nothing may flush the
// stdio buffers it shares with its parent.
void WriteFailureLine(std::string_view line) {
  if (line.empty()) return;
  std::string text(line);
  text += '\n';
  if (write(STDERR_FILENO, text.data(), text.size()) < 0) return;
}

}  // namespace

ChildProcess ChildProcess::Start(const std::vector<std::string>& argv, const char* mode,
                                 std::string_view failureLine) {
  std::vector<std::string> words(argv);
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);

  const pid_t caller = getpid();
  pid_t pid = 0;
  FILE* stream = child_popen(pointers.data(), mode, &pid);
  if (stream == nullptr) {
    WriteFailureLine(failureLine);
    // A copy of the whole program (its window, its X and D-Bus connections)
    // must not go back into the flow: the parent would wait on it for ever.
    if (getpid() != caller) _exit(127);
  }
  return ChildProcess(stream, pid);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : stream_(std::exchange(other.stream_, nullptr)), pid_(std::exchange(other.pid_, 0)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
  if (this != &other) {
    Close();
    stream_ = std::exchange(other.stream_, nullptr);
    pid_ = std::exchange(other.pid_, 0);
  }
  return *this;
}

int ChildProcess::Close() {
  if (stream_ == nullptr) return -1;
  return child_pclose(std::exchange(stream_, nullptr), std::exchange(pid_, 0));
}
