// "hosts": "existing -o -" on many hosts at once over OpenSSH, each archive
// brought home as DIR/HOST.tar.gz, a table of how every host went at the end.
#include <filesystem>
#include <memory>
#include <string>

#include "app/i18n.h"
#include "cli/command_options.h"
#include "cli/exit_codes.h"
#include "cli/failure.h"
#include "cli/host_fanout.h"
#include "cli/hosts_file.h"
#include "cli/hosts_summary.h"

namespace {

struct HostsArguments {
  FanOutOptions fanOut;
  std::string hostsFile;
};

// The hosts of the command line and the hosts file, or why they cannot be used.
std::string CollectHosts(HostsArguments& arguments) {
  std::string problem;
  if (!arguments.hostsFile.empty() && !ReadHostsFile(arguments.hostsFile, arguments.fanOut.hosts, problem))
    return problem;
  if (arguments.fanOut.hosts.empty()) return _("No host given: name hosts or give --hosts-file.");
  for (const std::string& host : arguments.fanOut.hosts)
    if (problem = HostNameProblem(host); !problem.empty()) return problem;
  if (!std::filesystem::is_directory(arguments.fanOut.folder))
    return FormatMessage(_("%s is not a folder."), arguments.fanOut.folder.string());
  return {};
}

int RunHosts(HostsArguments& arguments) {
  if (const std::string problem = CollectHosts(arguments); !problem.empty()) {
    ReportFailure(problem);
    return exitcode::kUsage;
  }
  bool stopped = false;
  std::vector<HostResult> results;
  {
    HostsProgress progress;
    results = FetchFromHosts(arguments.fanOut, [&progress](const FanOutCounts& counts) { progress.Show(counts); },
                             stopped);
  }
  PrintHostsSummary(results, stdout);
  if (stopped) ReportFailure(_("Stopped: the unfinished hosts left no files."));
  for (const HostResult& result : results)
    if (!result.ok) return exitcode::kSomeHostsFailed;
  return exitcode::kWritten;
}

}  // namespace

void AddHostsCommand(CLI::App& cli, CommandContext& context) {
  auto arguments = std::make_shared<HostsArguments>();
  FanOutOptions& fanOut = arguments->fanOut;
  CLI::App* command = cli.add_subcommand(
      "hosts", "Run \"existing -o -\" on many hosts over ssh and save each archive as DIR/HOST.tar.gz");
  command->add_option("hosts", fanOut.hosts, "hosts or ssh aliases")->type_name("HOST");
  command->add_option("--hosts-file", arguments->hostsFile, "one host per line; blank lines and # comments skipped")
      ->type_name("FILE");
  command->add_option("-o,--output", fanOut.folder, "folder the archives go to")->type_name("DIR")->capture_default_str();
  command->add_option("--jobs", fanOut.jobs, "hosts fetched at the same time")
      ->capture_default_str()
      ->check(CLI::Range(1, 1000));
  command->add_option("--timeout", fanOut.timeoutSeconds, "seconds one host may take; 0 is no limit")
      ->capture_default_str()
      ->check(CLI::NonNegativeNumber);
  command->add_flag("--mask", fanOut.mask, "pass --mask to the remote command");
  command->add_option("--ssh-config", fanOut.sshConfig, "given to ssh as -F FILE")->type_name("FILE");
  command->add_option("--ssh-option", fanOut.sshOptions, "given to ssh as -o OPT (ssh_config syntax), repeatable")
      ->type_name("OPT")
      ->allow_extra_args(false);
  command->callback([&context, arguments] { context.exitCode = RunHosts(*arguments); });
}
