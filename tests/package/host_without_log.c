/* A plain C host that has no logging function. */
#include <stdlib.h>

#include "tests/package/moving_scene.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const struct plugin plugin = open_plugin(argv[1]);
  const struct scene scene = {320, 240, 3, "\"sensitivity\":\"-1\",", whole_frame};
  return show_scene(&plugin, &scene, NULL) > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
