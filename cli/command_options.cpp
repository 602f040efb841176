#include "cli/command_options.h"

#include <unistd.h>

#include "app/i18n.h"
#include "cli/archive_output.h"
#include "cli/exit_codes.h"
#include "cli/progress_line.h"

namespace {

// A gzip stream on a terminal is noise and can upset it: "-" wants a pipe or a file.
std::string NotATerminal(const std::string& output) {
  return output == "-" && isatty(STDOUT_FILENO) ? _("will not write the archive to a terminal; redirect it") : "";
}

}  // namespace

void AddCollectOptions(CLI::App& command, CollectOptions& options, const std::string& defaultName) {
  options.output = defaultName;
  command.add_option("-o,--output", options.output, "where the archive goes; - is standard output")
      ->type_name("PATH")
      ->capture_default_str()
      ->check(NotATerminal);
  command.add_flag("--list", options.list, "print what would be collected (path and size) and change nothing");
  AddMaskOptions(command, options.mask);
}

void InstallArchiveListHook(App& app, const CollectOptions& options, ArchiveMasker& masker) {
  app.archiveListHook = options.mask.mask ? MaskingHook(masker) : nullptr;
}

int MakeAndDeliverArchive(App& app, const CollectOptions& options, int (App::*makeArchive)(),
                          const std::filesystem::path& archive, ArchiveOutput& output,
                          const std::filesystem::path& emptyFolder) {
  // Lives until the archive is delivered: its scratch folder holds the members.
  ArchiveMasker masker;
  if (options.mask.mask && !OpenArchiveMasker(app, options.mask, masker)) return exitcode::kArchiveFailed;
  InstallArchiveListHook(app, options, masker);
  int archiveCode = 0;
  {
    const ProgressLine progress(archive);
    archiveCode = (app.*makeArchive)();
  }
  return DeliverArchive(app, archiveCode, archive, output, emptyFolder);
}
