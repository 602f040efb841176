#include "cli/command_options.h"

void AddCollectOptions(CLI::App& command, CollectOptions& options, const std::string& defaultName) {
  options.output = defaultName;
  command.add_option("-o,--output", options.output, "where the archive goes; - is standard output")
      ->type_name("PATH")
      ->capture_default_str();
  command.add_flag("--list", options.list, "print what would be collected (path and size) and change nothing");
}

void InstallArchiveListHook(App& app, const CollectOptions&) {
  // Nothing to change yet: the archive takes the list as the engine built it.
  app.archiveListHook = nullptr;
}
