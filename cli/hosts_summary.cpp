#include "cli/hosts_summary.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <string>

#include "app/i18n.h"

namespace {

using Row = std::array<std::string, 4>;

std::string Formatted(const char* format, double value) {
  char text[32];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

Row RowOf(const HostResult& result) {
  return {result.host, result.result, result.ok ? Formatted("%.1f MB", static_cast<double>(result.size) / 1e6) : "-",
          Formatted("%.1f", result.seconds)};
}

// Display width of UTF-8 text, for the translated headers and reasons.
size_t Width(const std::string& text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

void PrintRow(const Row& row, const std::array<size_t, 4>& widths, std::FILE* out) {
  for (size_t column = 0; column < row.size(); ++column) {
    const std::string padding(widths[column] - Width(row[column]), ' ');
    // Numbers line up on the right, words on the left.
    const std::string cell = column >= 2 ? padding + row[column] : row[column] + padding;
    std::fprintf(out, column + 1 < row.size() ? "%s  " : "%s\n", cell.c_str());
  }
}

}  // namespace

void PrintHostsSummary(const std::vector<HostResult>& results, std::FILE* out) {
  std::vector<Row> rows{{_("host"), _("result"), _("size"), _("seconds")}};
  for (const HostResult& result : results) rows.push_back(RowOf(result));
  std::array<size_t, 4> widths{};
  for (const Row& row : rows)
    for (size_t column = 0; column < row.size(); ++column) widths[column] = std::max(widths[column], Width(row[column]));
  for (const Row& row : rows) PrintRow(row, widths, out);
  std::fflush(out);
}

HostsProgress::HostsProgress() : terminal_(isatty(STDERR_FILENO) != 0) {}

HostsProgress::~HostsProgress() {
  if (terminal_) std::fputs("\r\033[K", stderr);
}

void HostsProgress::Show(const FanOutCounts& counts) {
  // Called for every chunk that arrives: the line is redrawn on a change, and
  // a few times a second at most otherwise.
  const auto now = std::chrono::steady_clock::now();
  const bool changed = counts.done != shown_.done || counts.running != shown_.running;
  if (!terminal_ || (!changed && now - shownAt_ < std::chrono::milliseconds(200))) return;
  shown_ = counts, shownAt_ = now;
  std::string line = FormatMessage(_("%s done"), std::to_string(counts.done));
  line += ", " + FormatMessage(_("%s running"), std::to_string(counts.running));
  line += ", " + FormatMessage(_("%s waiting"), std::to_string(counts.waiting));
  std::fprintf(stderr, "\r%s\033[K", line.c_str());
  std::fflush(stderr);
}
