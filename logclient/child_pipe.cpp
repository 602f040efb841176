// popen/pclose without a shell: the child is started from an argument vector
// and absolute-path arguments are glob-expanded in the child.
#include <fcntl.h>
#include <glob.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "logclient/logclient.h"

namespace logclient {
namespace {

void RecordFailure(child_pipe_error* error, int stage, int savedErrno) {
  if (error == nullptr) return;
  error->stage = stage;
  error->saved_errno = savedErrno;
}

// Points target (1 or 2) at /dev/null; the message number tells which.
bool SilenceDescriptor(int target, int messageNumber, child_pipe_error* error) {
  int fd = open("/dev/null", O_WRONLY);
  if (fd < 0) {
    int saved = errno;
    RecordFailure(error, CHILD_PIPE_STAGE_DEV_NULL, saved);
    fprintf(stderr, "%s: %d Child Process Failed to Open /dev/null, Errno (%d): %s\n", "",
            messageNumber, saved, strerror(saved));
    return false;
  }
  if (fd != target) {
    dup2(fd, target);
    close(fd);
  }
  return true;
}

// Moves the child's end of the pipe onto target. The pipe was made
// close-on-exec so that other children never inherit it; dup2 clears that
// flag on the copy, and an end that already sits on target is cleared by hand.
void AttachPipeEnd(int end, int target) {
  if (end == target) {
    fcntl(end, F_SETFD, 0);
    return;
  }
  dup2(end, target);
  close(end);
}

class ArgumentVector {
 public:
  ~ArgumentVector() {
    for (size_t i = 0; i < count_; ++i) free(items_[i]);
    free(items_);
  }
  bool Append(const char* text) {
    auto* grown = static_cast<char**>(realloc(items_, (count_ + 2) * sizeof(char*)));
    if (grown == nullptr) return false;
    items_ = grown;
    items_[count_] = strdup(text);
    items_[++count_] = nullptr;
    return true;
  }
  char** data() const { return items_; }

 private:
  char** items_ = nullptr;
  size_t count_ = 0;
};

// Absolute paths are patterns; one that matches nothing (or fails) is kept as
// it is, like a shell without nullglob would.
void ExpandArguments(char* const argv[], ArgumentVector& out) {
  for (size_t i = 0; argv[i] != nullptr; ++i) {
    glob_t matches{};
    if (argv[i][0] == '/' && glob(argv[i], 0, nullptr, &matches) == 0) {
      for (size_t m = 0; m < matches.gl_pathc; ++m) out.Append(matches.gl_pathv[m]);
    } else {
      out.Append(argv[i]);
    }
    globfree(&matches);
  }
}

// Runs in the child. Returns only when the start failed; the caller then
// gets null back in the child process.
FILE* StartChild(char* const argv[], bool reading, const int fds[2], bool quietStdout,
                 bool quietStderr, child_pipe_error* error) {
  // In "r" mode standard output is the pipe itself, so only "w" silences it.
  if (!reading && quietStdout && !SilenceDescriptor(STDOUT_FILENO, 144, error)) return nullptr;
  if (quietStderr && !SilenceDescriptor(STDERR_FILENO, 171, error)) return nullptr;
  if (reading) {
    close(fds[0]);
    AttachPipeEnd(fds[1], STDOUT_FILENO);
  } else {
    close(fds[1]);
    AttachPipeEnd(fds[0], STDIN_FILENO);
  }
  ArgumentVector expanded;
  ExpandArguments(argv, expanded);
  if (expanded.data() != nullptr) execvp(expanded.data()[0], expanded.data());
  RecordFailure(error, CHILD_PIPE_STAGE_EXEC, errno);
  return nullptr;
}

FILE* WrapParentEnd(bool reading, const int fds[2], const char* mode, child_pipe_error* error) {
  close(reading ? fds[1] : fds[0]);
  FILE* stream = fdopen(reading ? fds[0] : fds[1], mode);
  if (stream == nullptr) RecordFailure(error, CHILD_PIPE_STAGE_STREAM, errno);
  return stream;
}

}  // namespace
}  // namespace logclient

extern "C" {

FILE* child_popen_ex(char* const argv[], const char* mode, pid_t* pid_out, int quiet_stdout,
                     int quiet_stderr, struct child_pipe_error* error) {
  logclient::RecordFailure(error, 0, 0);
  if (pid_out != nullptr) *pid_out = 0;
  if (mode == nullptr) return nullptr;
  bool reading = strcmp(mode, "r") == 0;
  if (!reading && strcmp(mode, "w") != 0) {
    logclient::RecordFailure(error, CHILD_PIPE_STAGE_MODE, EINVAL);
    fprintf(stderr, "%s: %d Invalid Parameter mode \"[%s]\", only allow \"r\" or \"w\"\n", "", 93,
            mode);
    return nullptr;
  }
  int fds[2];
  if (pipe2(fds, O_CLOEXEC) != 0) {
    logclient::RecordFailure(error, CHILD_PIPE_STAGE_PIPE, errno);
    fprintf(stderr, "%s: %d Failed to create Pipe \n", "", 105);
    return nullptr;
  }
  pid_t child = fork();
  if (child < 0) {
    logclient::RecordFailure(error, CHILD_PIPE_STAGE_FORK, errno);
    fprintf(stderr, "%s: %d Failed to fork \n", "", 115);
    close(fds[0]);
    close(fds[1]);
    return nullptr;
  }
  if (child == 0)
    return logclient::StartChild(argv, reading, fds, quiet_stdout, quiet_stderr, error);
  if (pid_out != nullptr) *pid_out = child;
  return logclient::WrapParentEnd(reading, fds, mode, error);
}

FILE* child_popen_quiet(char* const argv[], const char* mode, pid_t* pid_out, int quiet_stdout,
                        int quiet_stderr) {
  return child_popen_ex(argv, mode, pid_out, quiet_stdout, quiet_stderr, nullptr);
}

FILE* child_popen(char* const argv[], const char* mode, pid_t* pid_out) {
  return child_popen_ex(argv, mode, pid_out, 0, 0, nullptr);
}

int child_pclose(FILE* stream, pid_t pid) {
  if (stream == nullptr) return -1;
  if (fclose(stream) != 0 || pid < 1) return -1;
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return status;
}

}  // extern "C"
