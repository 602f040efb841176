// Entry of logmgr-cli: the window's two collecting flows for a terminal or an
// ssh session. Never touches the toolkit, so it needs no display.
#include <CLI/CLI.hpp>
#include <signal.h>

#include <cstdlib>
#include <exception>
#include <string>

#include "app/i18n.h"
#include "cli/command_options.h"
#include "cli/exit_codes.h"
#include "cli/failure.h"
#include "host/client_version.h"

namespace {

constexpr const char* kExitCodesText =
    "Exit codes: 0 archive written, 1 nothing to archive, 2 the archive could not be made or written,\n"
    "3 refused (overwrite not confirmed, see --yes), 4 another instance runs, 64 usage error;\n"
    "hosts: 0 every host's archive saved, 1 one or more hosts failed.\n"
    "See logmgr-cli(1).";

std::string VersionText() {
  const std::string client = ToNarrowString(GetClientVersion());
  return "logmgr-cli " NORVEX_VERSION "\nNorvex client " + (client.empty() ? std::string("not found") : client);
}

void DescribeCommands(CLI::App& cli, CommandContext& context) {
  cli.require_subcommand(1);
  cli.footer(kExitCodesText);
  cli.set_version_flag("--version", VersionText, "Print the utility's and the installed client's version");
  AddExistingCommand(cli, context);
  AddReproduceCommand(cli, context);
  AddHostsCommand(cli, context);
}

int Parse(CLI::App& cli, int argc, char** argv) {
  try {
    cli.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // --help and --version end here too, with 0.
    if (error.get_exit_code() == 0) return cli.exit(error);
    ReportFailure(FormatMessage(_("%s (see logmgr-cli --help)"), error.what()));
    return exitcode::kUsage;
  }
  return -1;
}

}  // namespace

int main(int argc, char** argv) {
  // Write failures, a dropped ssh pipe included, are return values here.
  signal(SIGPIPE, SIG_IGN);
  if (std::getenv("HOME") == nullptr) {
    ReportFailure("HOME is not set.");
    return exitcode::kArchiveFailed;
  }
  App app;
  BindMessageCatalogue(app.installRoot.string());
  CommandContext context{app};
  CLI::App cli{"Collects the Norvex client's logs into a gzip tar archive, without a display.", "logmgr-cli"};
  DescribeCommands(cli, context);
  try {
    const int parsed = Parse(cli, argc, argv);
    return parsed >= 0 ? parsed : context.exitCode;
  } catch (const std::exception& error) {
    ReportFailure(error.what());
    return exitcode::kArchiveFailed;
  }
}
