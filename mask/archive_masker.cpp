#include "mask/archive_masker.h"

#include <stdlib.h>

#include <fstream>

#include "mask/local_values.h"
#include "mask/stream_masker.h"

namespace fs = std::filesystem;

namespace {

// The login first, so that its stand-in and the home's read alike
// (user0001, /home/user0001) when the map is new.
void SettleHome(StandInMap& map, const LocalValues& values) {
  if (values.home.empty() || values.users.empty()) return;
  map.Settle(ValueKind::kHome, values.home, "/home/" + map.StandIn(ValueKind::kUser, values.users.front()));
}

const char* Reason(MaskResult result) {
  return result == MaskResult::kBinary ? "binary content, not text: left out" : "could not be read or masked: left out";
}

bool SameFile(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return fs::equivalent(a, b, ignored);
}

}  // namespace

ArchiveMasker::~ArchiveMasker() {
  std::error_code ignored;
  if (!scratch_.empty()) fs::remove_all(scratch_, ignored);
}

MaskOpenError ArchiveMasker::Open(const MaskSettings& settings) {
  std::vector<std::string> words = settings.words;
  if (!settings.wordFile.empty() && !ReadWordFile(settings.wordFile, words)) return MaskOpenError::kWordFile;
  mapFile_ = settings.mapFile;
  if (!map_.Load(mapFile_)) return MaskOpenError::kMap;
  const LocalValues values = GatherLocalValues(settings.installRoot, settings.home, std::move(words));
  if (!scanner_.Compile(BuildValuePatterns(values), patternError_)) return MaskOpenError::kPatterns;
  SettleHome(map_, values);
  std::error_code made;
  fs::create_directories(settings.scratchParent, made);
  std::string folder = (settings.scratchParent / "mask-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) return MaskOpenError::kScratch;
  scratch_ = folder;
  return MaskOpenError::kNone;
}

void ArchiveMasker::MaskFiles(std::vector<fs::path>& files) {
  std::vector<fs::path> masked;
  std::ofstream leftOut(scratch_ / kMaskedOutName);
  leftOut << "Members left out of this masked archive:\n";
  size_t number = 0;
  bool anyLeftOut = false;
  for (const fs::path& file : files) {
    if (!fs::exists(fs::status(file))) continue;  // the archive skips it as well
    // A folder each, so that two members of one base name stay two.
    const fs::path copy = scratch_ / std::to_string(++number) / file.filename();
    fs::create_directories(copy.parent_path());
    const MaskResult result =
        SameFile(file, mapFile_) ? MaskResult::kFailed : MaskFile(file, copy, scanner_, map_);
    if (result == MaskResult::kMasked) {
      masked.push_back(copy);
      continue;
    }
    fs::remove(copy);
    anyLeftOut = true;
    leftOut << file.filename().string() << ": " << Reason(result) << "\n";
  }
  if (number == 0) return;  // nothing to archive stays nothing, not a lone list
  if (!anyLeftOut) leftOut << "none\n";
  masked.push_back(scratch_ / kMaskedOutName);
  files = std::move(masked);
}
