#pragma once
// Single-instance lock in the per-user client scratch folder.
#include <string>

std::string GetClientTempDirectory();
// The lock file of the program called name in the scratch folder.
std::string LockFilePath(const std::string& name);
// True when start-up must not go on (another copy runs, or no check was possible).
bool EnsureSingleInstance(const std::string& name);
// For another program's lock, read only: true when it names a live process
// whose program file is called name, or when that could not be checked.
bool LockHeldByRunningProgram(const std::string& name);
std::string ReadFirstCommandLineField(const std::string& path);
