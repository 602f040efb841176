#pragma once
// Small file helpers for building test fixtures.
#include <sys/types.h>

#include <filesystem>
#include <string>

namespace testsupport {

// Writes content (creating parent folders) and sets the mode.
void WriteFile(const std::filesystem::path& file, const std::string& content, mode_t mode = 0644);
// Writes a "#!/bin/sh" script with the given body, mode 0755 unless told otherwise.
void WriteScript(const std::filesystem::path& file, const std::string& body, mode_t mode = 0755);
// Whole file as bytes; empty when it cannot be read.
std::string ReadFile(const std::filesystem::path& file);
// Runs a shell command and returns its standard output (exit status ignored).
std::string RunAndCapture(const std::string& command);
// A folder holding symlinks to the named system tools, for a PATH that lacks everything else.
void LinkSystemTools(const std::filesystem::path& folder, std::initializer_list<const char*> tools);

}  // namespace testsupport
