// The time stamp of the "Last saved log: " line.
#include "collect/timestamp.h"

#include <locale>
#include <sstream>
#include <string_view>

#include "app/app.h"

std::string FormatTimestamp(const std::tm& when) {
  // No AM/PM field: 01:05 and 13:05 read the same, as they always have.
  static constexpr std::string_view kFormat = "%A, %B %d, %Y, %I:%M:%S %Z (%z)";
  std::ostringstream text;
  const auto& facet = std::use_facet<std::time_put<char>>(text.getloc());
  facet.put(text, text, ' ', &when, kFormat.data(), kFormat.data() + kFormat.size());
  return text.str();
}

std::string App::TimestampText() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return FormatTimestamp(local);
}
