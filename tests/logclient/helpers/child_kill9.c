/* Child pipe helper: dies of SIGKILL. */
#include <signal.h>

int main(void) {
  raise(SIGKILL);
  return 0;
}
