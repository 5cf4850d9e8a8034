/* Prints the numbers of rand() in a process that never seeded it. usage: fresh_rand COUNT */
#include <stdio.h>
#include <stdlib.h>

int main(int argc, char** argv) {
  for (long left = argc > 1 ? atol(argv[1]) : 0; left > 0; --left) printf("%d\n", rand());
  return 0;
}
