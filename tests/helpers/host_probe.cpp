// Prints the install root it finds; tests copy it into the folder to run it from.
#include <cstdio>

#include "host/install_root.h"

int main() {
  std::printf("%s\n", FindInstallRoot().c_str());
  return 0;
}
