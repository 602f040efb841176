#pragma once
// A client install root that passes the install-root test: the four client
// executables, nothing else. Tests add the files they need on top.
#include <filesystem>

namespace testsupport {

void MakeFakeInstallRoot(const std::filesystem::path& root);

}  // namespace testsupport
