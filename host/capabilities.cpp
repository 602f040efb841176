#include "host/capabilities.h"

#include <dlfcn.h>
#include <unistd.h>

#include <iostream>

namespace {

using CapFromText = void* (*)(const char*);
using CapSetProc = int (*)(void*);
using CapFree = int (*)(void*);

// Held only while ReduceCapabilities runs; start-up calls it on one thread.
void* gCapLibrary = nullptr;
CapFromText gCapFromText = nullptr;
CapSetProc gCapSetProc = nullptr;
CapFree gCapFree = nullptr;

// Override stays effective so files of other users can be written;
// read-search is only permitted, to be raised where it is needed.
constexpr const char* kReducedState = "= cap_dac_override+ep cap_dac_read_search+p";

bool LoadCapLibrary() {
  gCapLibrary = dlopen("libcap.so.2", RTLD_LAZY);
  if (gCapLibrary == nullptr) gCapLibrary = dlopen("libcap.so.1", RTLD_LAZY);
  if (gCapLibrary != nullptr) return true;
  std::cerr << "Unable to set the capability as libcap library is not found\n"
            << "Unable to get the capability reduction lib\n";
  return false;
}

template <typename Function>
bool Resolve(const char* symbol, Function& slot) {
  slot = reinterpret_cast<Function>(dlsym(gCapLibrary, symbol));
  if (slot != nullptr) return true;
  const char* error = dlerror();
  std::cerr << symbol << " unresolved: " << (error ? error : "") << "\n";
  return false;
}

bool ResolveCapFunctions() {
  if (Resolve("cap_from_text", gCapFromText) && Resolve("cap_set_proc", gCapSetProc) &&
      Resolve("cap_free", gCapFree))
    return true;
  dlclose(gCapLibrary);
  gCapLibrary = nullptr;
  std::cerr << "Unable to get the capability reduction lib\n";
  return false;
}

void UnloadCapLibrary() {
  dlclose(gCapLibrary);
  gCapLibrary = nullptr;
  gCapFromText = nullptr;
  gCapSetProc = nullptr;
  gCapFree = nullptr;
}

}  // namespace

int ReduceCapabilities() {
  if (geteuid() != 0) return 0;
  if (!LoadCapLibrary() || !ResolveCapFunctions()) return -1;
  void* state = gCapFromText(kReducedState);
  int result = 0;
  if (gCapSetProc(state) != 0) {
    std::cerr << "cap_set_proc : failed\n";
    result = -1;
  }
  gCapFree(state);
  UnloadCapLibrary();
  return result;
}

void SecureZero(void* buffer, size_t length) {
  if (buffer == nullptr) return;
  // volatile keeps the compiler from dropping stores to memory about to be freed.
  volatile unsigned char* byte = static_cast<volatile unsigned char*>(buffer);
  for (size_t i = 0; i < length; ++i) byte[i] = 0;
}
