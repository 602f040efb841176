/* The header is C and the library links from C: a few calls, results checked. */
#define _GNU_SOURCE
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>

#include "logclient/logclient.h"

static int failures = 0;
#define CHECK(cond) \
  if (!(cond)) fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #cond), failures++

int main(void) {
  char home[] = "/tmp/logclient-c-XXXXXX";
  if (mkdtemp(home) == NULL) return 2;
  setenv("HOME", home, 1);
  CHECK(log_get_class_level(0) == -1);
  CHECK(log_config_open() == 1);
  CHECK(log_get_effective_level(12) == LOG_LEVEL_ERROR);
  CHECK(log_set_class_level(12, LOG_LEVEL_VERBOSE) == 1);
  CHECK(strcmp(log_get_class_name(1), "LOG_ASSERT") == 0);
  CHECK(strstr(log_config_file_path(), "//.ORBClient/.nvxndclogconf") != NULL);
  struct child_pipe_error error = {-1, -1};
  pid_t pid = -1;
  char* argv[] = {"true", NULL};
  CHECK(child_popen_ex(argv, "x", &pid, 0, 1, &error) == NULL && error.stage == 0);
  FILE* stream = child_popen(argv, "r", &pid);
  CHECK(stream != NULL && child_pclose(stream, pid) == 0);
  log_client_shutdown();
  char command[64];
  snprintf(command, sizeof command, "rm -rf %s", home);
  return system(command) == 0 && failures == 0 ? 0 : 1;
}
