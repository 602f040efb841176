#include "cli/progress_line.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>

#include "app/i18n.h"

namespace fs = std::filesystem;

ProgressLine::ProgressLine(fs::path archive) : archive_(std::move(archive)) {
  if (isatty(STDERR_FILENO)) painter_ = std::thread([this] { Show(); });
}

ProgressLine::~ProgressLine() {
  if (!painter_.joinable()) return;
  done_ = true;
  painter_.join();
  std::fputs("\r\033[K", stderr);
}

void ProgressLine::Show() {
  // An archive left by an earlier run is not this one's progress. Until tar
  // writes this one, the engine may still print its own lines, which must
  // not land after a half-painted one.
  const auto started = fs::file_time_type::clock::now();
  for (int tick = 0; !done_; std::this_thread::sleep_for(std::chrono::milliseconds(200))) {
    std::error_code error;
    const bool fresh = fs::last_write_time(archive_, error) >= started && !error;
    const auto size = fresh ? fs::file_size(archive_, error) : 0;
    if (!fresh || error) continue;
    std::fprintf(stderr, "\r%s %c %.1f MB\033[K", _("Collecting logs and making the archive"), "|/-\\"[tick++ % 4],
                 static_cast<double>(size) / 1e6);
    std::fflush(stderr);
  }
}
