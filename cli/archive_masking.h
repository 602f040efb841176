#pragma once
// --mask and its options: the members of the archive become masked copies
// before the archive is made.
#include <CLI/CLI.hpp>

#include <string>
#include <vector>

#include "app/app.h"
#include "mask/archive_masker.h"

struct MaskOptions {
  bool mask = false;
  std::vector<std::string> words;
  std::string wordFile;
  std::string mapFile;  // empty: ~/.ORBClient/mask-map.json
};

// Adds --mask, --mask-word, --mask-file and --mask-map; the last three need --mask.
void AddMaskOptions(CLI::App& command, MaskOptions& options);

// Readies masker for options; false after one line on standard error.
bool OpenArchiveMasker(const App& app, const MaskOptions& options, ArchiveMasker& masker);

// The hook that replaces the member list by masked copies and keeps the map.
std::function<void(App::FileList&)> MaskingHook(ArchiveMasker& masker);
