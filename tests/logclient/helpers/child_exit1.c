/* Child pipe helper: fails with exit status 1. */
int main(void) { return 1; }
