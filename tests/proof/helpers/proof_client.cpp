// A client program of the logging library for the fault tests:
//   area    maps the configuration area and prints what the getters and one
//           setter answer
#include <cstdio>
#include <string>

#include "logclient/logclient.h"

int main(int argc, char** argv) {
  if (argc != 2 || std::string(argv[1]) != "area") {
    fprintf(stderr, "usage: proof_client area\n");
    return 2;
  }
  const int opened = log_config_open();
  const int level0 = log_get_class_level(0);
  const int level3 = log_get_class_level(3);
  const int set3 = log_set_class_level(3, LOG_LEVEL_VERBOSE);
  const char* path = log_get_shared_path();
  printf("open=%d level0=%d level3=%d set3=%d tuningA=%d path=%.256s\n", opened, level0, level3, set3,
         log_get_tuning_a(), path ? path : "(null)");
  log_client_shutdown();
  return 0;
}
