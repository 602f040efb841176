#include "mask/archive_masker.h"

#include <sched.h>
#include <stdlib.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <system_error>
#include <thread>

#include "mask/local_values.h"
#include "mask/ordered_stand_ins.h"
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

// The processors this process may run on.
size_t Processors() {
  cpu_set_t set;
  if (sched_getaffinity(0, sizeof set, &set) != 0) return 1;
  return static_cast<size_t>(std::max(1, CPU_COUNT(&set)));
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
  keep_ = settings.keep;
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

// Each member that exists, with the place of its copy: a folder each, so
// that two members of one base name stay two.
std::vector<ArchiveMasker::Member> ArchiveMasker::Members(const std::vector<fs::path>& files) const {
  std::vector<Member> members;
  for (const fs::path& file : files) {
    if (!fs::exists(fs::status(file))) continue;  // the archive skips it as well
    const fs::path copy = scratch_ / std::to_string(members.size() + 1) / file.filename();
    fs::create_directories(copy.parent_path());
    members.push_back({file, copy, MaskResult::kFailed});
  }
  return members;
}

bool ArchiveMasker::Kept(const std::string& value) const {
  return std::find(keep_.begin(), keep_.end(), value) != keep_.end();
}

// On every processor at once: one scanner each, one shared map.
void ArchiveMasker::MaskMembers(std::vector<Member>& members) {
  OrderedStandIns standIns(map_, members.size());
  std::atomic<size_t> next{0};
  const auto work = [&](ValueScanner& scanner) {
    for (size_t i = next++; i < members.size(); i = next++) {
      const StandInOf standInOf = [this, &standIns, i](ValueKind kind, const std::string& value) {
        return Kept(value) ? value : standIns.StandIn(i, kind, value);
      };
      Member& member = members[i];
      member.result = SameFile(member.file, mapFile_) ? MaskResult::kFailed
                                                      : MaskFile(member.file, member.copy, scanner, standInOf);
      standIns.Finished(i);
    }
  };
  const size_t helpers = std::min(Processors(), members.size()) - 1;
  std::vector<ValueScanner> scanners;
  scanners.reserve(helpers);
  std::vector<std::thread> threads;
  try {
    while (threads.size() < helpers) threads.emplace_back(work, std::ref(scanners.emplace_back(scanner_)));
  } catch (const std::system_error&) {
    // Fewer threads, the same work: this one takes what they leave.
  }
  work(scanner_);
  for (std::thread& thread : threads) thread.join();
}

void ArchiveMasker::MaskFiles(std::vector<fs::path>& files) {
  std::vector<Member> members = Members(files);
  if (members.empty()) return;  // nothing to archive stays nothing, not a lone list
  MaskMembers(members);
  std::vector<fs::path> masked;
  std::ofstream leftOut(scratch_ / kMaskedOutName);
  leftOut << "Members left out of this masked archive:\n";
  bool anyLeftOut = false;
  for (const Member& member : members) {
    if (member.result == MaskResult::kMasked) {
      masked.push_back(member.copy);
      continue;
    }
    fs::remove(member.copy);
    anyLeftOut = true;
    leftOut << member.file.filename().string() << ": " << Reason(member.result) << "\n";
  }
  if (!anyLeftOut) leftOut << "none\n";
  masked.push_back(scratch_ / kMaskedOutName);
  files = std::move(masked);
}
