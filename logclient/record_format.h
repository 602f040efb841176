#pragma once
// Formatting of record texts. Log formats are mostly plain text with %d and
// %s, for which the C library's vsnprintf costs more than the socket write
// it precedes; those are formatted here and anything else goes to vsnprintf.
#include <cstdarg>
#include <cstddef>

namespace logclient {

// Formats into out (capacity > 0 bytes), cutting at capacity - 1 characters
// and always terminating. Returns the length written.
size_t FormatRecordText(char* out, size_t capacity, const char* format, va_list args);

}  // namespace logclient
