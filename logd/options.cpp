#include "logd/options.h"

#include <CLI/CLI.hpp>

namespace logd {

int ParseOptions(int argc, char** argv, Options& options) {
  CLI::App app{
      "logd: the log daemon of the Norvex client family. Takes records from the client programs on "
      "the socket the logging library names and appends each as one line to the log file the shared "
      "configuration area names, as long as that file lies in a log folder logd serves.",
      "logd"};
  app.add_option("--max-size", options.maxFileBytes,
                 "Bytes a log file may reach before it is rotated to .1 (0: no cap)")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  app.add_option("--keep", options.keepFiles, "Rotated files kept, NAME.1 (newest) to NAME.N")
      ->check(CLI::Range(1, 100))
      ->capture_default_str();
  app.add_option("--rate-interval", options.rateIntervalSeconds,
                 "Seconds of the window in which a client may send --rate-burst records")
      ->check(CLI::Range(1, 86400))
      ->capture_default_str();
  app.add_option("--rate-burst", options.rateBurst, "Records a client may send per window (0: no limit)")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  app.add_option("--partial-timeout", options.partialSeconds,
                 "Seconds a client may take to complete a record it has begun")
      ->check(CLI::Range(1, 3600))
      ->capture_default_str();
  app.add_option("--idle-timeout", options.idleSeconds, "Seconds a client may stay silent (0: for ever)")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  return -1;
}

}  // namespace logd
