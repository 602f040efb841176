#pragma once
// Stateless queries of the user and the process: home, login name, program
// path, search-path lookup and local time text.
#include <cstdint>
#include <string>

std::string GetHomeDirectory();
std::string GetUserName();
std::string GetExecutablePath();
// name begins with "/" (for example "/uname"); size bounds each PATH element.
bool IsExecutableOnPath(unsigned size, const char* name);
std::string FormatLocalTime(const char* format);
std::string GetTimestampForFileName();
bool FileExists(const std::string& path);
int64_t ParseLocalTime(const std::string& text, const char* format);
void SplitPath(const std::string& path, std::string& folder, std::string& name);
