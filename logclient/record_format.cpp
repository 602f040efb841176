#include "logclient/record_format.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace logclient {
namespace {

// Appends with truncation; full() tells when nothing more fits.
class TextSink {
 public:
  TextSink(char* out, size_t capacity) : out_(out), limit_(capacity - 1) {}
  void Append(const char* text, size_t length) {
    size_t room = limit_ - length_;
    if (length > room) length = room;
    memcpy(out_ + length_, text, length);
    length_ += length;
  }
  void Append(char c) {
    if (length_ < limit_) out_[length_++] = c;
  }
  size_t Finish() {
    out_[length_] = '\0';
    return length_;
  }

 private:
  char* out_;
  size_t limit_;
  size_t length_ = 0;
};

void AppendUnsigned(TextSink& sink, unsigned long long value, unsigned base, bool upper, bool negative) {
  const char* digits = upper ? "0123456789ABCDEF" : "0123456789abcdef";
  char buffer[24];
  char* end = buffer + sizeof buffer;
  char* at = end;
  do {
    *--at = digits[value % base];
    value /= base;
  } while (value != 0);
  if (negative) *--at = '-';
  sink.Append(at, static_cast<size_t>(end - at));
}

enum class Length { kInt, kLong, kLongLong, kSize };

// va_list is an array type on some ABIs; wrapped, it can be passed by
// reference and consumed across calls.
struct Arguments {
  va_list list;
};

Length ReadLength(const char*& cursor) {
  if (*cursor == 'z') {
    ++cursor;
    return Length::kSize;
  }
  if (*cursor != 'l') return Length::kInt;
  if (*++cursor != 'l') return Length::kLong;
  ++cursor;
  return Length::kLongLong;
}

void AppendSigned(TextSink& sink, Length length, Arguments& args) {
  long long value = length == Length::kInt    ? va_arg(args.list, int)
                    : length == Length::kLong ? va_arg(args.list, long)
                    : length == Length::kSize ? static_cast<long long>(va_arg(args.list, ssize_t))
                                              : va_arg(args.list, long long);
  // Negated as unsigned so that the most negative value does not overflow.
  unsigned long long magnitude = value < 0 ? 0ull - static_cast<unsigned long long>(value)
                                           : static_cast<unsigned long long>(value);
  AppendUnsigned(sink, magnitude, 10, false, value < 0);
}

void AppendUnsignedArgument(TextSink& sink, char conversion, Length length, Arguments& args) {
  unsigned long long value = length == Length::kInt    ? va_arg(args.list, unsigned)
                             : length == Length::kLong ? va_arg(args.list, unsigned long)
                             : length == Length::kSize ? va_arg(args.list, size_t)
                                                       : va_arg(args.list, unsigned long long);
  AppendUnsigned(sink, value, conversion == 'u' ? 10 : 16, conversion == 'X', false);
}

// One conversion after its "%"; false for anything this formatter leaves to
// vsnprintf (flags, width, precision, floating point, ...).
bool AppendConversion(TextSink& sink, const char*& cursor, Arguments& args) {
  Length length = ReadLength(cursor);
  char conversion = *cursor++;
  if (conversion == 'd' || conversion == 'i') {
    AppendSigned(sink, length, args);
  } else if (conversion == 'u' || conversion == 'x' || conversion == 'X') {
    AppendUnsignedArgument(sink, conversion, length, args);
  } else if (length != Length::kInt) {
    return false;
  } else if (conversion == 's') {
    const char* text = va_arg(args.list, const char*);
    if (text == nullptr) text = "(null)";
    sink.Append(text, strlen(text));
  } else if (conversion == 'c') {
    sink.Append(static_cast<char>(va_arg(args.list, int)));
  } else if (conversion == '%') {
    sink.Append('%');
  } else {
    return false;
  }
  return true;
}

bool FormatSimple(char* out, size_t capacity, const char* format, Arguments& args, size_t* length) {
  TextSink sink(out, capacity);
  const char* at = format;
  while (*at != '\0') {
    const char* percent = strchr(at, '%');
    if (percent == nullptr) {
      sink.Append(at, strlen(at));
      break;
    }
    sink.Append(at, static_cast<size_t>(percent - at));
    at = percent + 1;
    if (!AppendConversion(sink, at, args)) return false;
  }
  *length = sink.Finish();
  return true;
}

}  // namespace

size_t FormatRecordText(char* out, size_t capacity, const char* format, va_list args) {
  Arguments attempt;
  va_copy(attempt.list, args);
  size_t length = 0;
  bool done = FormatSimple(out, capacity, format, attempt, &length);
  va_end(attempt.list);
  if (done) return length;
  int formatted = vsnprintf(out, capacity, format, args);
  if (formatted < 0) {
    out[0] = '\0';
    return 0;
  }
  return static_cast<size_t>(formatted) < capacity ? static_cast<size_t>(formatted) : capacity - 1;
}

}  // namespace logclient
