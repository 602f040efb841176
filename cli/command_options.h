#pragma once
// The options every collecting command shares, and what one run needs.
#include <CLI/CLI.hpp>

#include <string>

#include "app/app.h"
#include "cli/archive_masking.h"

struct CollectOptions {
  std::string output;  // "-" is standard output
  bool list = false;
  MaskOptions mask;
};

// Adds -o/--output (default defaultName in the current folder), --list and the mask options.
void AddCollectOptions(CLI::App& command, CollectOptions& options, const std::string& defaultName);

// The one point every member list passes, just before its archive is made:
// whatever a command does to the files it archives, it does here.
// With --mask, the members become masked copies there (masker opened already).
void InstallArchiveListHook(App& app, const CollectOptions& options, ArchiveMasker& masker);

class ArchiveOutput;

// The archive step of both commands: the hook installed, the engine's member
// (ArchiveExistingLogs or ArchiveIssueLogs) run under the progress line, and
// its archive delivered to output. Returns the exit code.
int MakeAndDeliverArchive(App& app, const CollectOptions& options, int (App::*makeArchive)(),
                          const std::filesystem::path& archive, ArchiveOutput& output,
                          const std::filesystem::path& emptyFolder);

// What a subcommand's run needs: the engine, and where to leave its exit code.
struct CommandContext {
  App& app;
  int exitCode = 0;
};

void AddExistingCommand(CLI::App& cli, CommandContext& context);
void AddReproduceCommand(CLI::App& cli, CommandContext& context);
void AddHostsCommand(CLI::App& cli, CommandContext& context);
