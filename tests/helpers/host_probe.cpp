// Prints the install root that a program running from its own folder finds:
// the tests copy it into the folder they want to run it from.
#include <cstdio>

#include "host/install_root.h"

int main() {
  std::printf("%s\n", FindInstallRoot().c_str());
  return 0;
}
