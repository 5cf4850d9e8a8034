/* A host with a logging function, which is called once, with a path, a level and a text, for automatic
 * sensitivity. */
#include <stdlib.h>
#include <string.h>

#include "tests/package/moving_scene.h"

static int calls;
static int good_calls;

void log_File_Debug_s(const char* path, int level, const char* format, ...) {
  ++calls;
  /* A format without conversions: there are no further arguments. */
  good_calls += strcmp(path, "/Kdbglog/.nera_motion_log/.md.log") == 0 && level == 10485760 &&
                strcmp(format, "enable AUTO sensitivity") == 0;
}

static int calls_with(const struct plugin* plugin, const char* settings) {
  const struct scene scene = {64, 48, 3, settings, whole_frame};
  calls = 0;
  show_scene(plugin, &scene, NULL);
  return calls;
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const struct plugin plugin = open_plugin(argv[1]);
  const bool good = calls_with(&plugin, "\"sensitivity\":\"-1\",") == 1 && good_calls == 1 &&
                    calls_with(&plugin, "\"sensitivity\":\"5\",") == 0 && calls_with(&plugin, "") == 0;
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
