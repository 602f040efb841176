#include "install/shell_run.h"

#include "support/files.h"

namespace installtest {

ShellResult RunShell(const std::string& command) {
  // The status rides on a last line of its own, after everything the command printed.
  std::string output = testsupport::RunAndCapture("{ " + command + " ; } 2>&1; printf '\\n@exit=%d' $?");
  const size_t at = output.rfind("\n@exit=");
  if (at == std::string::npos) return {-1, output};
  return {std::stoi(output.substr(at + 7)), output.substr(0, at)};
}

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

}  // namespace installtest
