/* A host that exports a function of its own under every name that the library exports: the library never
 * calls one. */
#include <stdio.h>
#include <stdlib.h>

#include "tests/package/moving_scene.h"

/* All namesakes end here. */
void namesake_called(void);
void namesake_called(void) {
  fputs("failed: the library called a function of the host that has the name of its own\n", stderr);
  exit(1);
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const struct plugin plugin = open_plugin(argv[1]);
  const struct scene scene = {320, 240, 3, "\"sensitivity\":\"-1\",", whole_frame};
  return show_scene(&plugin, &scene, NULL) > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
