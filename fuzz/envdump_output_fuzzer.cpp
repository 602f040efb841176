// The environment dump tool's output, any bytes: the dump path made from it
// holds no line ends and keeps every other byte in order.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "collect/envdump_output.h"
#include "fuzz/check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string printed(reinterpret_cast<const char*>(data), size);
  const std::string path = DumpPathFromEnvdumpOutput(printed);
  FUZZ_CHECK(path.find_first_of("\r\n") == std::string::npos);
  size_t at = 0;
  for (char c : printed) {
    if (c == '\r' || c == '\n') continue;
    FUZZ_CHECK(at < path.size() && path[at] == c);
    ++at;
  }
  FUZZ_CHECK(at == path.size());
  // The copy takes it as a path value unchanged.
  FUZZ_CHECK(std::filesystem::path(path).string() == path);
  return 0;
}
