#pragma once
// What fixtures are built from: a scratch folder and an environment variable
// (nullptr unsets it) for a scope, files, scripts and commands. Plain C++, for
// benchmarks and fuzz targets too.
#include <stdlib.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

namespace testsupport {

class TempDir {
 public:
  explicit TempDir(const std::string& prefix = "norvex-test") {
    std::string pattern = (std::filesystem::temp_directory_path() / (prefix + "-XXXXXX")).string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string str() const { return path_.string(); }
  const char* c_str() const { return path_.c_str(); }
  std::filesystem::path operator/(const std::string& rel) const { return path_ / rel; }

 private:
  std::filesystem::path path_;
};

class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = getenv(name)) old_ = old;
    value ? setenv(name, value, 1) : unsetenv(name);
  }
  ~ScopedEnv() { old_ ? setenv(name_.c_str(), old_->c_str(), 1) : unsetenv(name_.c_str()); }
  ScopedEnv(const ScopedEnv&) = delete;

 private:
  std::string name_;
  std::optional<std::string> old_;
};


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

// A 32-bit value's bytes as this machine stores them.
inline std::string Bytes(int32_t value) { return std::string(reinterpret_cast<const char*>(&value), 4); }

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
