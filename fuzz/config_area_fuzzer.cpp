// The shared configuration area mapped from a file of any bytes and length,
// as another program of the client (or a broken disk) may leave it. After the
// mapping every getter and setter must keep to its bounds; the shutdown
// unmaps, so each input is mapped afresh.
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz/check.h"
#include "fuzz/scratch_home.h"
#include "logclient/logclient.h"

namespace {

constexpr size_t kAreaSize = 516;
constexpr size_t kPathOffset = 244;
constexpr size_t kPathSize = 256;
constexpr uint32_t kMagic = 0x12345678;

fuzzsupport::ScratchHome* g_scratch = nullptr;
std::string g_areaFile;

uint32_t WordAt(const std::string& bytes, size_t offset) {
  uint32_t word = 0;
  memcpy(&word, bytes.data() + offset, sizeof word);
  return word;
}

bool SamePathField(const char* field, const char* expected) {
  return field != nullptr && strncmp(field, expected, kPathSize) == 0;
}

// A file with the magic is used as it stands; anything else is replaced by
// the default image.
void CheckMappedValues(const std::string& input) {
  const bool kept = input.size() >= kAreaSize && WordAt(input, 512) == kMagic;
  uint32_t flags = 0;
  FUZZ_CHECK(log_get_flags(&flags) == 1);
  if (kept) {
    FUZZ_CHECK(flags == WordAt(input, 0));
    for (int c = 0; c < LOG_CLASS_COUNT; ++c)
      FUZZ_CHECK(log_get_class_level(c) == static_cast<int32_t>(WordAt(input, 4 + 4 * c)));
    FUZZ_CHECK(memcmp(log_get_shared_path(), input.data() + kPathOffset, kPathSize) == 0);
    FUZZ_CHECK(log_get_tuning_a() == static_cast<int32_t>(WordAt(input, 500)));
    FUZZ_CHECK(log_get_tuning_b() == static_cast<int32_t>(WordAt(input, 504)));
    FUZZ_CHECK(log_get_tuning_c() == static_cast<int32_t>(WordAt(input, 508)));
  } else {
    FUZZ_CHECK(flags == 0x167F);
    FUZZ_CHECK(log_get_class_level(0) == LOG_LEVEL_ERROR);
    for (int c = 1; c < LOG_CLASS_COUNT; ++c) FUZZ_CHECK(log_get_class_level(c) == 0);
    FUZZ_CHECK(SamePathField(log_get_shared_path(), client_log_file_path()));
    FUZZ_CHECK(log_get_tuning_a() == 200 && log_get_tuning_b() == 2 && log_get_tuning_c() == 200);
  }
}

// Out-of-range classes and levels fail; in-range ones resolve to a level
// that some class on the chain stores.
void CheckGetters() {
  for (int c = -2; c < LOG_CLASS_COUNT + 2; ++c) {
    const bool valid = c >= 0 && c < LOG_CLASS_COUNT;
    FUZZ_CHECK((log_get_class_name(c) != nullptr) == valid);
    FUZZ_CHECK((log_get_class_display_name(c) != nullptr) == valid);
    FUZZ_CHECK((log_get_class_parent(c) >= -1) && (valid || log_get_class_parent(c) == -1));
    // Defaults come from the process's own image, whatever the file held.
    FUZZ_CHECK(log_get_default_level(c) == (!valid ? -1 : c == 0 ? LOG_LEVEL_ERROR : 0));
    const int effective = log_get_effective_level(c);
    if (!valid) {
      FUZZ_CHECK(log_get_class_level(c) == -1 && effective == -1);
      continue;
    }
    const int own = log_get_class_level(c);
    if (own != 0) FUZZ_CHECK(effective == own);
    FUZZ_CHECK(effective != 0);
    for (int level = 1; level <= LOG_LEVEL_AOL; ++level)
      log_write_class(c, level, "fuzz", "area", 0, "class %d level %d", c, level);
  }
  for (int level = -1; level <= 8; ++level) {
    FUZZ_CHECK((log_get_level_name(level) != nullptr) == (level >= 0 && level <= 7));
    FUZZ_CHECK((log_get_level_display_name(level) != nullptr) == (level >= 0 && level <= 7));
  }
  uint32_t defaults = 0;
  FUZZ_CHECK(log_get_default_flags(&defaults) == 1 && defaults == 0x167F);
  FUZZ_CHECK(log_get_flags(nullptr) == 0 && log_get_default_flags(nullptr) == 0);
}

void CheckSetters(const uint8_t* data, size_t size) {
  for (size_t i = 0; i < size && i < LOG_CLASS_COUNT; ++i) {
    const int level = data[i] % 10;
    const int cls = static_cast<int>(i);
    const int before = log_get_class_level(cls);
    FUZZ_CHECK(log_set_class_level(cls, level) == (level <= 7 ? 1 : 0));
    FUZZ_CHECK(log_get_class_level(cls) == (level <= 7 ? level : before));
  }
  std::string path(reinterpret_cast<const char*>(data), std::min(size, size_t{300}));
  FUZZ_CHECK(log_set_shared_path(path.c_str()) == 1);
  FUZZ_CHECK(SamePathField(log_get_shared_path(), path.c_str()));
  const int value = size >= 4 ? static_cast<int>(data[0] | data[1] << 8 | data[2] << 16 | data[3] << 24) : 0;
  FUZZ_CHECK(log_set_tuning_a(value) == (value >= 1 && value <= 2000 ? 1 : 0));
  FUZZ_CHECK(log_set_tuning_b(value) == (value >= 0 && value <= 100 ? 1 : 0));
  FUZZ_CHECK(log_set_tuning_c(value) == (value >= 0 && value <= 2000 ? 1 : 0));
  uint32_t flags = 0;
  FUZZ_CHECK(log_set_flags(static_cast<uint32_t>(value)) == 1 && log_get_flags(&flags) == 1);
  FUZZ_CHECK((flags & static_cast<uint32_t>(value)) == static_cast<uint32_t>(value));
  FUZZ_CHECK(log_clear_flags(LOG_FLAG_THREAD_NAME) == 1 && log_get_flags(&flags) == 1);
  FUZZ_CHECK((flags & LOG_FLAG_THREAD_NAME) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  g_scratch = new fuzzsupport::ScratchHome;
  if (log_system_wide_mode()) {
    std::fprintf(stderr, "the client runs system-wide here; refusing to fuzz its real area\n");
    std::abort();
  }
  g_areaFile = log_config_file_path();
  std::atexit([] { delete g_scratch; });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  fuzzsupport::WriteBytes(g_areaFile, data, size);
  FUZZ_CHECK(log_config_open() == 1);
  struct stat info {};
  FUZZ_CHECK(stat(g_areaFile.c_str(), &info) == 0 && info.st_size == kAreaSize);
  CheckMappedValues(input);
  CheckGetters();
  CheckSetters(data, size);
  const int level59 = log_get_class_level(59);
  log_client_shutdown();
  FUZZ_CHECK(log_get_class_level(0) == -1 && log_get_shared_path() == nullptr);
  // The setters wrote through the shared mapping into the file.
  const std::string after = testsupport::ReadFile(g_areaFile);
  FUZZ_CHECK(after.size() == kAreaSize && static_cast<int32_t>(WordAt(after, 4 + 4 * 59)) == level59);
  return 0;
}
