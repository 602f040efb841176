// "existing": the collect-existing-logs flow without its dialog.
#include <memory>

#include "app/constants.h"
#include "app/i18n.h"
#include "cli/archive_output.h"
#include "cli/collection_listing.h"
#include "cli/command_options.h"
#include "cli/exit_codes.h"
#include "cli/instance_lock.h"

namespace {

int RunExisting(App& app, const CollectOptions& options) {
  if (options.list) {
    PrintExistingLogsList(app);
    return exitcode::kWritten;
  }
  ArchiveOutput output(options.output);
  if (AnotherInstanceRuns()) return exitcode::kOtherInstance;
  // Names the file, as the window's message does.
  return MakeAndDeliverArchive(app, options, &App::ArchiveExistingLogs, app.existingArchive, output,
                               app.existingClientLogCopy);
}

}  // namespace

void AddExistingCommand(CLI::App& cli, CommandContext& context) {
  auto options = std::make_shared<CollectOptions>();
  CLI::App* command =
      cli.add_subcommand("existing", "Collect the logs the client has written, with fresh system reports");
  AddCollectOptions(*command, *options, std::string(constants::kExistingArchiveName));
  command->callback([&context, options] { context.exitCode = RunExisting(context.app, *options); });
}
