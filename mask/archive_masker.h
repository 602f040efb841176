#pragma once
// Turns the list of files to archive into masked copies, under the same
// base names, in a scratch folder of its own, plus "masked-out.txt" naming
// every member left out and why.
#include <filesystem>
#include <string>
#include <vector>

#include "mask/stand_in_map.h"
#include "mask/stream_masker.h"
#include "mask/value_scanner.h"

struct MaskSettings {
  std::string installRoot;
  std::string home;
  std::vector<std::string> words;    // --mask-word
  std::vector<std::string> keep;     // of an address's shape, but what support must read
  std::filesystem::path wordFile;    // --mask-file, empty for none
  std::filesystem::path mapFile;     // the stand-ins kept across runs
  std::filesystem::path scratchParent;
};

enum class MaskOpenError { kNone, kWordFile, kMap, kPatterns, kScratch };

class ArchiveMasker {
 public:
  ArchiveMasker() = default;
  ~ArchiveMasker();  // the scratch folder goes with it
  ArchiveMasker(const ArchiveMasker&) = delete;
  ArchiveMasker& operator=(const ArchiveMasker&) = delete;

  // Everything that can fail before a member is read.
  MaskOpenError Open(const MaskSettings& settings);
  // files becomes the masked copies and masked-out.txt; a member that cannot
  // be masked is left out, never archived as it was.
  void MaskFiles(std::vector<std::filesystem::path>& files);
  // Stores the stand-ins made so far in the map file.
  bool SaveMap() const { return map_.Save(mapFile_); }
  const std::filesystem::path& MapFile() const { return mapFile_; }
  // The matching engine's reason after kPatterns.
  const std::string& PatternError() const { return patternError_; }

 private:
  struct Member {
    std::filesystem::path file;
    std::filesystem::path copy;
    MaskResult result;
  };
  std::vector<Member> Members(const std::vector<std::filesystem::path>& files) const;
  bool Kept(const std::string& value) const;
  void MaskMembers(std::vector<Member>& members);

  ValueScanner scanner_;
  StandInMap map_;
  std::filesystem::path mapFile_;
  std::vector<std::string> keep_;
  std::filesystem::path scratch_;
  std::string patternError_;
};

inline constexpr const char* kMaskedOutName = "masked-out.txt";
