// SanitizeOsToken over any text: only the token alphabet comes out, never
// more characters than went in, and a token is its own sanitised form.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/check.h"
#include "host/os_identity.h"

namespace {

bool InTokenAlphabet(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
         c == '.';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string token = SanitizeOsToken(text);
  FUZZ_CHECK(token.size() <= text.size());
  size_t kept = 0;
  for (char c : text) {
    if (InTokenAlphabet(c) || c == ' ' || c == '_') ++kept;
  }
  FUZZ_CHECK(token.size() == kept);
  for (char c : token) FUZZ_CHECK(InTokenAlphabet(c));
  FUZZ_CHECK(SanitizeOsToken(token) == token);
  return 0;
}
