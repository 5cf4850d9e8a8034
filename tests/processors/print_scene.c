/* Prints the result documents of a few scenes: the same bytes on every processor.
 * Frames whose pixel count is not a multiple of 32 have a region that covers the whole frame: the versions of
 * region pruning work in blocks of 16 or 32, so with other regions the last pixels may differ between levels.
 */
#include <stdlib.h>

#include "tests/package/moving_scene.h"

static const char left_half[] =
    "{\"x\":\"0\",\"y\":\"0\"},{\"x\":\"0.5\",\"y\":\"0\"},{\"x\":\"0.5\",\"y\":\"1\"},{\"x\":\"0\",\"y\":"
    "\"1\"}";

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const struct plugin plugin = open_plugin(argv[1]);
  const struct scene scenes[] = {
      {160, 120, 3, "", whole_frame},
      {160, 120, 4, "\"sensitivity\":\"-1\",", left_half},
      {160, 120, 1, "\"lcAdap\":\"1\",", left_half},
      {107, 91, 3, "\"sensitivity\":\"1\",", whole_frame},
      {107, 91, 4, "\"minBoxW\":\"0.5\",\"minBoxH\":\"0.5\",", whole_frame},
      {91, 107, 1, "\"sensitivity\":\"5\",", whole_frame},
  };
  for (size_t i = 0; i < sizeof scenes / sizeof scenes[0]; ++i) {
    const int with_result = show_scene(&plugin, &scenes[i], stdout);
    printf("scene %zu: %d frames with boxes\n", i, with_result);
    if (with_result == 0) return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
