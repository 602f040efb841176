// The parsers of the three release files the program reads but does not
// write ("/etc/systeminfo", "/etc/tzagent/info", "/etc/os-release"), fed any
// text. Built once per file; NORVEX_FUZZ_FILE picks the parser.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/check.h"
#include "host/os_identity.h"

namespace {

struct FileParser {
  std::string (*parse)(const std::string&);
  const char* keys[2];
};

#if NORVEX_FUZZ_FILE == 1
constexpr FileParser kParser{ParseSystemInfoText, {"PRODUCT_NAME=", "PRODUCT_VERSION="}};
#elif NORVEX_FUZZ_FILE == 2
constexpr FileParser kParser{ParseThinClientInfoText, {"thinclient-name:", "thinclient-version:"}};
#else
constexpr FileParser kParser{ParseOsReleaseText, {"PRETTY_NAME=", "PRETTY_NAME="}};
#endif

bool Within(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// The result is one value taken from the text, or two joined by one blank.
bool MadeOfValues(const std::string& text, const std::string& result) {
  if (Within(text, result)) return true;
  for (size_t blank = result.find(' '); blank != std::string::npos;
       blank = result.find(' ', blank + 1)) {
    if (Within(text, result.substr(0, blank)) && Within(text, result.substr(blank + 1)))
      return true;
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string value = kParser.parse(text);
  FUZZ_CHECK(value.find('\n') == std::string::npos);
  if (!Within(text, kParser.keys[0]) && !Within(text, kParser.keys[1])) FUZZ_CHECK(value.empty());
  FUZZ_CHECK(MadeOfValues(text, value));
  // What the identification does with the value afterwards.
  const std::string token = SanitizeOsToken(value);
  FUZZ_CHECK(token.size() <= value.size());
  return 0;
}
