/* Child pipe helper: prints each argument on its own line, then copies its
 * standard input to standard output and says "done" on standard error. */
#include <stdio.h>

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) printf("%s\n", argv[i]);
  int c;
  while ((c = getchar()) != EOF) putchar(c);
  fputs("done\n", stderr);
  return 0;
}
