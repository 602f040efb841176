#include "support/temp_dir.h"

#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace testsupport {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "norvex-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ec;
  // Tests make folders unreadable on purpose; give them back before removing.
  for (auto it = std::filesystem::recursive_directory_iterator(
           path_, std::filesystem::directory_options::skip_permission_denied, ec);
       !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
    if (it->is_directory(ec) && !it->is_symlink(ec))
      std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                   std::filesystem::perm_options::add, ec);
  }
  std::filesystem::remove_all(path_, ec);
}

ScopedEnv::ScopedEnv(const char* name, const char* value) : name_(name) {
  if (const char* old = std::getenv(name)) {
    hadValue_ = true;
    oldValue_ = old;
  }
  if (value)
    setenv(name, value, 1);
  else
    unsetenv(name);
}

ScopedEnv::~ScopedEnv() {
  if (hadValue_)
    setenv(name_.c_str(), oldValue_.c_str(), 1);
  else
    unsetenv(name_.c_str());
}

}  // namespace testsupport
