// "reproduce": the issue-reproduction run without the window, ended by a
// signal or a time limit.
#include <memory>
#include <string>

#include "app/constants.h"
#include "app/i18n.h"
#include "cli/archive_output.h"
#include "cli/collection_listing.h"
#include "cli/command_options.h"
#include "cli/exit_codes.h"
#include "cli/failure.h"
#include "cli/instance_lock.h"
#include "cli/stop_signals.h"

namespace {

struct ReproduceOptions {
  CollectOptions collect;
  int seconds = 0;  // 0: until a signal
  bool yes = false;
};

// The start steps; false with the exit code set when the run must not go on.
bool StartRun(App& app, const ReproduceOptions& options, int& exitCode) {
  // Asked before anything is touched, so a refusal leaves no marker behind.
  if (app.RecentLogsExist() && !options.yes) {
    ReportFailure(_("Recent logs of an earlier run would be overwritten; run again with --yes to allow it."));
    exitCode = exitcode::kRefused;
    return false;
  }
  if (!app.PrepareIssueFolder()) {
    ReportFailure(FormatMessage(_("Could not create the log folder \"%s\"."), app.issueFolder.string()));
    exitCode = exitcode::kArchiveFailed;
    return false;
  }
  app.BeginIssueCollection();
  return true;
}

void AnnounceWait(const App& app, int seconds) {
  ReportStatus(FormatMessage(_("Collecting verbose logs into \"%s\"; reproduce the problem now."),
                             app.issueFolder.string()));
  if (seconds > 0)
    ReportStatus(
        FormatMessage(_("Stops by itself after %s seconds, or earlier with Ctrl-C."), std::to_string(seconds)));
  else
    ReportStatus(_("Press Ctrl-C (or send SIGTERM) to stop and make the archive."));
}

int RunReproduce(App& app, const ReproduceOptions& options) {
  if (options.collect.list) {
    PrintIssueLogsList(app);
    return exitcode::kWritten;
  }
  ArchiveOutput output(options.collect.output);
  if (AnotherInstanceRuns()) return exitcode::kOtherInstance;
  HoldStopSignals();
  int exitCode = exitcode::kWritten;
  if (!StartRun(app, options, exitCode)) return exitCode;
  AnnounceWait(app, options.seconds);
  WaitForStop(options.seconds);
  ReportStatus(_("Stopping: putting the log levels and the log path back."));
  app.EndIssueCollection();
  return MakeAndDeliverArchive(app, options.collect, &App::ArchiveIssueLogs, app.issueArchive, output,
                               app.issueFolder);
}

}  // namespace

void AddReproduceCommand(CLI::App& cli, CommandContext& context) {
  auto options = std::make_shared<ReproduceOptions>();
  CLI::App* command = cli.add_subcommand(
      "reproduce", "Log at the most verbose level until Ctrl-C, SIGTERM, SIGHUP or --for, then archive the run");
  AddCollectOptions(*command, options->collect, std::string(constants::kIssueArchiveName));
  command->add_option("--for", options->seconds, "stop by itself after this many seconds")
      ->type_name("SECONDS")
      ->check(CLI::PositiveNumber);
  command->add_flag("--yes", options->yes, "overwrite the recent logs of an earlier run");
  command->callback([&context, options] { context.exitCode = RunReproduce(context.app, *options); });
}
