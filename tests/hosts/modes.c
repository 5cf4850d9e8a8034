/* A C host that loads the plug-in in every way, unloads it and loads it again; by itself, beside a library
 * that exports all of its names, and beside a copy of it. The results are always the same.
 *
 * usage: modes LIBRARY NAMESAKES COPY [STAYS]      STAYS: the plug-in is not expected to leave memory when
 * closed */
#include "tests/hosts/modes.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "tests/package/moving_scene.h"

static const struct scene scene = {64, 48, 3, "\"sensitivity\":\"-1\",", whole_frame};

static void require(bool condition, const char* what, const char* mode) {
  if (condition) return;
  fprintf(stderr, "failed: %s (%s)\n", what, mode);
  exit(1);
}

static void find(void* library, const char* name, void* function) {
  void* const address = dlsym(library, name);
  require(address != NULL, "finding an entry point", name);
  memcpy(function, &address, sizeof address);
}

static void* load(const char* path, const struct mode* mode, struct plugin* plugin) {
  void* const library = dlopen(path, mode->flags);
  require(library != NULL, "dlopen", mode->name);
  find(library, "initialization", &plugin->initialization);
  find(library, "frameProc", &plugin->frameProc);
  find(library, "getRes", &plugin->getRes);
  find(library, "terminate", &plugin->terminate);
  return library;
}

/* The results of a whole life; to be freed. rand(), from which the plug-in draws, starts anew. */
static char* results(const struct plugin* plugin) {
  char* text = NULL;
  size_t length = 0;
  FILE* const out = open_memstream(&text, &length);
  require(out != NULL, "memory for results", "");
  srand(1);
  require(show_scene(plugin, &scene, out) > 0, "a scene with motion", "");
  fclose(out);
  return text;
}

static void load_and_unload(const char* path, const struct mode* mode, const char* expected, bool stays) {
  for (int round = 0; round < 3; ++round) {
    struct plugin plugin;
    void* const library = load(path, mode, &plugin);
    char* const text = results(&plugin);
    require(strcmp(text, expected) == 0, "results differ", mode->name);
    free(text);
    require(dlclose(library) == 0, "dlclose", mode->name);
    require(stays || dlopen(path, RTLD_NOW | RTLD_NOLOAD) == NULL, "the plug-in stays in memory", mode->name);
  }
}

/* Each has a detector of its own. */
static void beside_a_copy(const char* path, const char* copy, const struct mode* mode, const char* expected) {
  struct plugin first;
  struct plugin second;
  void* const library = load(path, mode, &first);
  void* const other = load(copy, mode, &second);
  require(library != other, "the copy is the plug-in itself", mode->name);
  const char* const document =
      "{\"frmW\":\"8\",\"frmH\":\"8\",\"frmChn\":\"1\",\"roi\":[{\"points\":[{\"x\":\"0\",\"y\":\"0\"}]}]}";
  require(first.initialization(document), "a detector in the first", mode->name);
  char* const text = results(&second);
  require(strcmp(text, expected) == 0, "results beside a copy differ", mode->name);
  free(text);
  require(!first.initialization(document), "the first one's detector is gone", mode->name);
  first.terminate();
  dlclose(other);
  dlclose(library);
}

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) return 2;
  struct plugin plugin;
  void* const library = load(argv[1], &modes[0], &plugin);
  char* const expected = results(&plugin);
  dlclose(library);
  for (size_t i = 0; i < sizeof modes / sizeof modes[0]; ++i) {
    load_and_unload(argv[1], &modes[i], expected, argc == 5);
    void* const namesakes = dlopen(argv[2], RTLD_NOW | RTLD_GLOBAL);
    require(namesakes != NULL, "the library of namesakes", dlerror());
    load_and_unload(argv[1], &modes[i], expected, argc == 5);
    dlclose(namesakes);
    beside_a_copy(argv[1], argv[3], &modes[i], expected);
  }
  free(expected);
  return EXIT_SUCCESS;
}
