#pragma once
// Small file and command helpers for building test fixtures.
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace testsupport {

// Writes content (creating parent folders) and sets the mode.
inline void WriteFile(const std::filesystem::path& file, const std::string& content, mode_t mode = 0644) {
  if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  if (!(out << content).flush()) throw std::runtime_error("cannot write " + file.string());
  chmod(file.c_str(), mode);
}

inline void WriteScript(const std::filesystem::path& file, const std::string& body, mode_t mode = 0755) {
  WriteFile(file, "#!/bin/sh\n" + body + "\n", mode);
}

// The whole file; empty when it cannot be read.
inline std::string ReadFile(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

// Standard output of a shell command; its exit status is not looked at.
inline std::string RunAndCapture(const std::string& command) {
  std::string output;
  FILE* pipe = popen(command.c_str(), "r");
  for (int c; pipe != nullptr && (c = fgetc(pipe)) != EOF;) output += static_cast<char>(c);
  if (pipe != nullptr) pclose(pipe);
  return output;
}

// A folder of links to the named system tools, for a PATH that lacks everything else.
inline void LinkSystemTools(const std::filesystem::path& folder, std::initializer_list<const char*> tools) {
  std::filesystem::create_directories(folder);
  for (const char* tool : tools)
    for (const char* dir : {"/usr/bin/", "/bin/", "/usr/sbin/", "/sbin/"})
      if (std::filesystem::exists(std::string(dir) + tool)) {
        std::filesystem::create_symlink(std::string(dir) + tool, folder / tool);
        break;
      }
}

}  // namespace testsupport
