#pragma once
// A scratch folder per test, removed with everything in it at scope end, and
// an environment variable set (or with nullptr unset) for a scope.
#include <stdlib.h>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace testsupport {

class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "norvex-test-XXXXXX").string();
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

}  // namespace testsupport
