#pragma once
// Runs the build's tools (cpack, dpkg, ldd) from the install tests.
#include <string>

namespace installtest {

struct ShellResult {
  int status = -1;     // exit status of the command, -1 when it could not be read
  std::string output;  // standard output and standard error together
};
ShellResult RunShell(const std::string& command);

// Wraps text in single quotes for the shell.
std::string Quoted(const std::string& text);

}  // namespace installtest
