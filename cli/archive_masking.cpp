#include "cli/archive_masking.h"

#include "app/i18n.h"
#include "cli/failure.h"
#include "host/client_version.h"

namespace fs = std::filesystem;

namespace {

fs::path MapFileOf(const App& app, const MaskOptions& options) {
  return options.mapFile.empty() ? DefaultMapFile(app.homeFolder.string()) : fs::path(options.mapFile);
}

void ReportOpenError(const ArchiveMasker& masker, MaskOpenError error, const MaskOptions& options,
                     const fs::path& scratchParent) {
  const fs::path& mapFile = masker.MapFile();
  switch (error) {
    case MaskOpenError::kWordFile:
      ReportFailure(FormatMessage(_("Could not read the words to mask from \"%s\"."), options.wordFile));
      break;
    case MaskOpenError::kMap:
      ReportFailure(FormatMessage(_("Could not read the mask map \"%s\"; nothing was archived."), mapFile.string()));
      break;
    case MaskOpenError::kPatterns:
      ReportFailure(FormatMessage(_("The words to mask could not be turned into search patterns: %s"),
                                  masker.PatternError()));
      break;
    case MaskOpenError::kScratch:
      ReportFailure(FormatMessage(_("Could not create a folder for the masked copies in \"%s\"."),
                                  scratchParent.string()));
      break;
    case MaskOpenError::kNone:
      break;
  }
}

}  // namespace

void AddMaskOptions(CLI::App& command, MaskOptions& options) {
  CLI::Option* mask = command.add_flag(
      "--mask", options.mask,
      "replace addresses, host and user names in every text member by stand-ins; leave binary members out");
  command.add_option("--mask-word", options.words, "also mask this word (repeatable)")
      ->type_name("WORD")
      ->needs(mask);
  command.add_option("--mask-file", options.wordFile, "also mask the words of this file, one per line")
      ->type_name("FILE")
      ->needs(mask);
  command.add_option("--mask-map", options.mapFile, "keep the stand-ins in this file (default ~/.ORBClient/mask-map.json)")
      ->type_name("PATH")
      ->needs(mask);
}

bool OpenArchiveMasker(const App& app, const MaskOptions& options, ArchiveMasker& masker) {
  MaskSettings settings;
  settings.installRoot = app.installRoot.string();
  settings.home = app.homeFolder.string();
  settings.words = options.words;
  // Four dotted numbers, like an address, and the first thing support reads.
  if (const std::string version = ToNarrowString(GetClientVersion()); !version.empty())
    settings.keep.push_back(version);
  settings.wordFile = options.wordFile;
  settings.mapFile = MapFileOf(app, options);
  settings.scratchParent = app.homeFolder / ".ORBClient/.tmp";
  const MaskOpenError error = masker.Open(settings);
  ReportOpenError(masker, error, options, settings.scratchParent);
  return error == MaskOpenError::kNone;
}

std::function<void(App::FileList&)> MaskingHook(ArchiveMasker& masker) {
  return [&masker](App::FileList& files) {
    masker.MaskFiles(files);
    if (!masker.SaveMap())
      ReportFailure(FormatMessage(_("Could not save the mask map \"%s\"; later archives may use other stand-ins."),
                                  masker.MapFile().string()));
  };
}
