#include "proof_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <thread>

#include "support/files.h"

namespace prooftest {

pid_t StartProofClient(const std::vector<std::string>& args, const std::filesystem::path& home,
                       const std::filesystem::path& output) {
  std::vector<std::string> words{PROOF_CLIENT_PATH};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  pid_t child = fork();
  if (child == 0) {
    int fd = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0 || dup2(fd, STDOUT_FILENO) < 0 || dup2(fd, STDERR_FILENO) < 0) _exit(126);
    setenv("HOME", home.c_str(), 1);
    execv(argv[0], argv.data());
    _exit(127);
  }
  return child;
}

std::optional<int> WaitWithin(pid_t child, std::chrono::seconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  int status = 0;
  for (;;) {
    pid_t done = waitpid(child, &status, WNOHANG);
    if (done == child) return status;
    if (done < 0 && errno != EINTR) return std::nullopt;
    if (std::chrono::steady_clock::now() > deadline) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  kill(child, SIGKILL);
  waitpid(child, &status, 0);
  return std::nullopt;
}

std::string RunProofClient(const std::vector<std::string>& args, const std::filesystem::path& home,
                           std::optional<int>* status, std::chrono::seconds limit) {
  const std::filesystem::path output = home / "proof_client.out";
  *status = WaitWithin(StartProofClient(args, home, output), limit);
  return testsupport::ReadFile(output);
}

}  // namespace prooftest
