#pragma once
// Stateless queries of the user and the process: home, login name, program
// path and search-path lookup.
#include <string>

std::string GetHomeDirectory();
std::string GetUserName();
std::string GetExecutablePath();
// name begins with "/" (for example "/uname"); size bounds each PATH element.
bool IsExecutableOnPath(unsigned size, const char* name);
bool FileExists(const std::string& path);
void SplitPath(const std::string& path, std::string& folder, std::string& name);
