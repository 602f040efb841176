#include "mask/text_sniff.h"

#include <cstring>

bool LooksLikeText(const char* data, size_t size) {
  if (std::memchr(data, '\0', size) != nullptr) return false;
  size_t control = 0;
  for (size_t i = 0; i < size; ++i) {
    const auto c = static_cast<unsigned char>(data[i]);
    if (c < 0x20 && c != '\t' && c != '\n' && c != '\r' && c != '\f' && c != '\v' && c != 0x1b) ++control;
  }
  // One in a hundred: a stray bell or backspace in a log, not a file format.
  return control * 100 <= size;
}
