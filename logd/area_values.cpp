#include "logd/area_values.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>

#include "logclient/config_area.h"
#include "logd/unique_fd.h"

namespace logd {
namespace {

using logclient::ConfigArea;

int32_t WordAt(const unsigned char* image, size_t offset) {
  int32_t word;
  memcpy(&word, image + offset, sizeof word);
  return word;
}

int InRange(int32_t value, int low, int high, int fallback) {
  return value >= low && value <= high ? value : fallback;
}

// Only an absolute path is taken; the field need not be terminated.
std::string PathFrom(const unsigned char* image) {
  const char* field = reinterpret_cast<const char*>(image + offsetof(ConfigArea, path));
  std::string path(field, strnlen(field, logclient::kSharedPathSize));
  return path.starts_with('/') ? path : std::string();
}

}  // namespace

AreaValues AreaValuesFrom(const unsigned char* image, size_t size) {
  AreaValues values;
  if (image == nullptr || size < sizeof(ConfigArea) ||
      static_cast<uint32_t>(WordAt(image, offsetof(ConfigArea, magic))) != logclient::kAreaMagic)
    return values;
  values.flags = static_cast<uint32_t>(WordAt(image, offsetof(ConfigArea, flags)));
  values.logPath = PathFrom(image);
  values.holdMs = InRange(WordAt(image, offsetof(ConfigArea, tuningA)), 1, 2000, values.holdMs);
  values.drainSeconds = InRange(WordAt(image, offsetof(ConfigArea, tuningB)), 0, 100, values.drainSeconds);
  values.maxClients = InRange(WordAt(image, offsetof(ConfigArea, tuningC)), 0, 2000, values.maxClients);
  return values;
}

AreaValues ReadArea(const std::string& file) {
  // O_NONBLOCK: a FIFO put in the area's place must not stop logd.
  UniqueFd fd(open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat info {};
  unsigned char image[sizeof(ConfigArea)];
  if (!fd.valid() || fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode)) return {};
  const ssize_t got = pread(fd.get(), image, sizeof image, 0);
  return AreaValuesFrom(image, got > 0 ? static_cast<size_t>(got) : 0);
}

void ProvideArea(const std::string& file) {
  UniqueFd fd(open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  // Set after creating, since the umask would cut the mode given to open.
  if (fd.valid()) fchmod(fd.get(), 0666);
}

}  // namespace logd
