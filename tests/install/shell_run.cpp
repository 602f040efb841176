#include "install/shell_run.h"

#include "support/files.h"

namespace installtest {

ShellResult RunShell(const std::string& command) {
  // The status rides on a last line of its own, after everything the command printed.
  const std::string marker = "\n@exit=";
  std::string output = testsupport::RunAndCapture("{ " + command + " ; } 2>&1; printf '" + "\\n@exit=%d\\n' $?");
  ShellResult result;
  size_t at = output.rfind(marker);
  if (at == std::string::npos) {
    result.output = output;
    return result;
  }
  result.status = std::stoi(output.substr(at + marker.size()));
  result.output = output.substr(0, at);
  return result;
}

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

}  // namespace installtest
