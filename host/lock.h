#pragma once
// Single-instance lock in the per-user client scratch folder.
#include <string>

std::string GetClientTempDirectory();
// True when start-up must not go on (another copy runs, or no check was possible).
bool EnsureSingleInstance(const std::string& name);
std::string ReadFirstCommandLineField(const std::string& path);
