#include "collect/envdump_output.h"

std::string DumpPathFromEnvdumpOutput(std::string_view printed) {
  std::string path;
  path.reserve(printed.size());
  for (char c : printed)
    if (c != '\r' && c != '\n') path += c;
  return path;
}
