#include "cli/collection_listing.h"

#include <fnmatch.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Member {
  fs::path path;
  bool writtenByRun = false;  // a report or copy the collection writes afresh
};

// The regular files the iterator walks whose name matches pattern, as "find
// -type f -name" lists them: links are neither followed nor listed.
template <typename Walk>
void AddMatches(Walk walk, const char* pattern, std::vector<Member>& members) {
  std::error_code error;
  for (; !error && walk != fs::end(walk); walk.increment(error))
    if (walk->symlink_status(error).type() == fs::file_type::regular &&
        fnmatch(pattern, walk->path().filename().c_str(), 0) == 0)
      members.push_back({walk->path()});
}

void AddFamily(const fs::path& folder, const char* pattern, bool recursive, std::vector<Member>& members) {
  std::error_code error;  // a missing folder lists nothing
  const auto options = fs::directory_options::skip_permission_denied;
  if (recursive)
    AddMatches(fs::recursive_directory_iterator(folder, options, error), pattern, members);
  else
    AddMatches(fs::directory_iterator(folder, options, error), pattern, members);
}

void PrintMembers(const std::vector<Member>& members) {
  for (const Member& member : members) {
    std::error_code error;
    const auto size = fs::file_size(member.path, error);
    if (member.writtenByRun)
      std::printf("%s -\n", member.path.c_str());
    else if (!error)
      std::printf("%s %ju\n", member.path.c_str(), static_cast<uintmax_t>(size));
  }
}

// The engine's fixed members; those in written are made afresh by the run.
std::vector<Member> FixedMembers(const App::FileList& fixed, const App::FileList& written) {
  std::vector<Member> members;
  for (const fs::path& file : fixed)
    members.push_back({file, std::find(written.begin(), written.end(), file) != written.end()});
  return members;
}

}  // namespace

void PrintExistingLogsList(const App& app) {
  // What the diagnostics write before the archive is made.
  std::vector<Member> members =
      FixedMembers(app.ExistingLogsMembers(), {app.existingSystemInfo, app.issueClientLogCopy,
                                               app.existingEnvdumpReport, app.existingDesklineCheckReport});
  AddFamily(app.logsFolder, "userActivity*", true, members);
  AddFamily(app.logsFolder, "kvlog*", true, members);
  PrintMembers(members);
}

void PrintIssueLogsList(const App& app) {
  // A run stages or writes every fixed member, and copies the client's
  // current logs in beside what the issue folder holds.
  const App::FileList fixed = app.IssueLogsMembers();
  std::vector<Member> members = FixedMembers(fixed, fixed);
  AddFamily(app.logsFolder, "userActivitylog*", false, members);
  AddFamily(app.logsFolder, "kvlog*", false, members);
  AddFamily(app.issueFolder, "userActivity*", true, members);
  AddFamily(app.issueFolder, "kvlog*", true, members);
  PrintMembers(members);
}
