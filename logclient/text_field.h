#pragma once
// Fixed-size text fields shared with other programs (the area's path, a
// socket address) are filled the strncpy way: NUL-padded, and with no
// terminator when the text fills the field.
#include <cstddef>
#include <cstring>

namespace logclient {

inline void FillTextField(char* field, const char* text, size_t fieldSize) {
  size_t length = strnlen(text, fieldSize);
  memcpy(field, text, length);
  memset(field + length, 0, fieldSize - length);
}

}  // namespace logclient
