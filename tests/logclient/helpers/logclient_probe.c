/* A second program using the library: "write TEXT" sends TEXT as an
 * always-on record; "root" prints the install root it finds. */
#include <stdio.h>
#include <string.h>

#include "logclient/logclient.h"

int main(int argc, char** argv) {
  if (argc == 3 && strcmp(argv[1], "write") == 0) {
    log_client_init();
    log_write_class(0, LOG_LEVEL_AOL, "probe", "main", 1, "%s", argv[2]);
    log_client_shutdown();
  } else if (argc == 2 && strcmp(argv[1], "root") == 0) {
    printf("%s", client_install_root());
  }
  return 0;
}
