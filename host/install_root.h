#pragma once
// Where the remote-desktop client is installed.
#include <string>
#include <string_view>

bool IsValidInstallRoot(const std::string& candidate);
// The first valid candidate without a trailing "/", or "" (with a line on stderr).
std::string FindInstallRoot();

// The client's platform folder name for a build-time token ("linux64" -> "linuxx64").
std::string PlatformFolderNameFor(std::string_view token);
// The folder name for the token this program was built with.
std::string PlatformFolderName();
