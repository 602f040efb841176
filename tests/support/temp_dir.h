#pragma once
// A scratch folder per test, removed with everything in it at scope end.
#include <filesystem>
#include <string>

namespace testsupport {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string str() const { return path_.string(); }
  std::filesystem::path operator/(const std::string& rel) const { return path_ / rel; }

 private:
  std::filesystem::path path_;
};

// Sets (or with nullptr unsets) an environment variable for the scope.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value);
  ~ScopedEnv();
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  std::string name_;
  bool hadValue_ = false;
  std::string oldValue_;
};

}  // namespace testsupport
