/* The header is C and the library links from C. */
#include <stddef.h>

#include "logclient/logclient.h"

int main(void) {
  struct child_pipe_error error = {0, 0};
  return log_get_class_level(0) == -1 && child_popen_ex(NULL, NULL, NULL, 0, 0, &error) == NULL ? 0 : 1;
}
