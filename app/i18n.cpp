#include "app/i18n.h"

#include <string_view>

std::string FormatMessage(const char* translatedFormat, const std::string& value) {
  std::string_view format(translatedFormat);
  std::string text;
  size_t at = format.find("%s");
  if (at == std::string_view::npos) return std::string(format);
  text.append(format.substr(0, at)).append(value).append(format.substr(at + 2));
  return text;
}
