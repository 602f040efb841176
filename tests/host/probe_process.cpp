#include "probe_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "support/privileges.h"

namespace hosttest {

std::string ProbePath() { return HOST_PROBE_PATH; }

ProbeProcess::ProbeProcess(const std::vector<std::string>& argv, const std::string& cwd) {
  int in[2], out[2], err[2];
  // Close-on-exec, so a second probe never holds the first one's input open.
  if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0)
    throw std::runtime_error("pipe failed");
  pid_ = fork();
  if (pid_ == 0) {
    dup2(in[0], STDIN_FILENO);
    dup2(out[1], STDOUT_FILENO);
    dup2(err[1], STDERR_FILENO);
    if (!cwd.empty() && chdir(cwd.c_str()) != 0) _exit(127);
    std::vector<char*> args;
    for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    execv(args[0], args.data());
    _exit(127);
  }
  close(in[0]);
  close(out[1]);
  close(err[1]);
  input_ = in[1];
  output_ = out[0];
  errorOutput_ = err[0];
}

ProbeProcess::~ProbeProcess() { Finish(); }

std::string ProbeProcess::ReadLine() {
  std::string line;
  char c;
  while (output_ >= 0 && read(output_, &c, 1) == 1 && c != '\n') line += c;
  return line;
}

int ProbeProcess::Finish() {
  if (pid_ <= 0) return -1;
  close(input_);
  close(output_);
  errors_ = DrainAndClose(errorOutput_);
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string DrainAndClose(int fd) {
  std::string text;
  char chunk[512];
  ssize_t n;
  while ((n = read(fd, chunk, sizeof(chunk))) > 0) text.append(chunk, static_cast<size_t>(n));
  close(fd);
  return text;
}

int RunAsNobodyCapturingStderr(const std::function<int()>& body, std::string& errors) {
  int err[2];
  if (pipe(err) != 0) return -1;
  int result = testsupport::RunAsNobody([&] {
    close(err[0]);
    dup2(err[1], STDERR_FILENO);
    return body();
  });
  close(err[1]);
  errors = DrainAndClose(err[0]);
  return result;
}

}  // namespace hosttest
