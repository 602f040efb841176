#pragma once
// A tool started through the client library's child pipe, held as one value:
// its stream and process id are closed and waited for together, once.
#include <sys/types.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

class ChildProcess {
 public:
  // Starts argv (mode "r": we read the tool's output; "w": we hold its input).
  // A failed start writes failureLine, unless empty, to standard error. The
  // library also reports a failed exec as a null stream inside the forked
  // copy of this process; that copy then ends at once with status 127, so
  // the caller's flow never runs on twice.
  static ChildProcess Start(const std::vector<std::string>& argv, const char* mode,
                            std::string_view failureLine);

  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&& other) noexcept;
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { Close(); }

  bool started() const { return stream_ != nullptr; }
  FILE* stream() const { return stream_; }
  // Closes the stream and waits for the tool: its raw wait status, or -1
  // when nothing is open or the wait failed.
  int Close();

 private:
  ChildProcess(FILE* stream, pid_t pid) : stream_(stream), pid_(pid) {}

  FILE* stream_ = nullptr;
  pid_t pid_ = 0;
};
