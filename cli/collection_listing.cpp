#include "cli/collection_listing.h"

#include <fnmatch.h>

#include <cstdio>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Member {
  fs::path path;
  bool writtenByRun = false;  // a report or copy the collection writes afresh
};

// The regular files below folder whose name matches pattern, as "find -type
// f -name" lists them: links are neither followed nor listed.
void AddFamily(const fs::path& folder, const char* pattern, bool recursive, std::vector<Member>& members) {
  std::error_code error;
  const auto options = fs::directory_options::skip_permission_denied;
  auto add = [&](const fs::directory_entry& entry) {
    if (entry.symlink_status(error).type() == fs::file_type::regular &&
        fnmatch(pattern, entry.path().filename().c_str(), 0) == 0)
      members.push_back({entry.path()});
  };
  if (recursive)
    for (auto it = fs::recursive_directory_iterator(folder, options, error); !error && it != fs::end(it);
         it.increment(error))
      add(*it);
  else
    for (auto it = fs::directory_iterator(folder, options, error); !error && it != fs::end(it); it.increment(error))
      add(*it);
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

}  // namespace

void PrintExistingLogsList(const App& app) {
  std::vector<Member> members{{app.existingKeywardLog},          {app.existingClientLogCopy},
                              {app.existingSystemInfo, true},    {app.issueClientLogCopy, true},
                              {app.existingEnvdumpReport, true}, {app.existingDesklineCheckReport, true}};
  AddFamily(app.logsFolder, "userActivity*", true, members);
  AddFamily(app.logsFolder, "kvlog*", true, members);
  PrintMembers(members);
}

void PrintIssueLogsList(const App& app) {
  // Named by the files they are staged from: the run copies them in.
  std::vector<Member> members{{app.existingKeywardLog},       {app.systemClientLog},
                              {app.issueSystemInfo, true},    {app.keywardConfigCopy, true},
                              {app.issueEnvdumpReport, true}, {app.issueDesklineCheckReport, true}};
  AddFamily(app.logsFolder, "userActivitylog*", false, members);
  AddFamily(app.logsFolder, "kvlog*", false, members);
  AddFamily(app.issueFolder, "userActivity*", true, members);
  AddFamily(app.issueFolder, "kvlog*", true, members);
  PrintMembers(members);
}
