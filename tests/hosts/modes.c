/* A C host that loads the plug-in in every way, unloads it and loads it again: alone, with a library that
 * exports the same names, and with a copy of the plug-in. The results are always the same.
 *
 * Every way runs in its own child process, because results depend on the state of rand(), which a new
 * detector changes.
 *
 * usage: modes LIBRARY NAMESAKES COPY [STAYS]      STAYS: the plug-in stays in memory when it is closed */
#include "tests/hosts/modes.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

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

struct way {
  const char* path;
  const char* beside; /* a library to load first, or null */
  const struct mode* mode;
  bool stays;
};

static void run_scene(const struct plugin* plugin, FILE* out) {
  require(show_scene(plugin, &scene, out) > 0, "a scene with motion", "");
}

static void load_and_unload(const struct way* way, FILE* out) {
  void* const namesakes = way->beside != NULL ? dlopen(way->beside, RTLD_NOW | RTLD_GLOBAL) : NULL;
  require(way->beside == NULL || namesakes != NULL, "loading the namesakes", way->mode->name);
  for (int round = 0; round < 3; ++round) {
    struct plugin plugin;
    void* const library = load(way->path, way->mode, &plugin);
    run_scene(&plugin, out);
    require(dlclose(library) == 0, "dlclose", way->mode->name);
    require(way->stays || dlopen(way->path, RTLD_NOW | RTLD_NOLOAD) == NULL, "the plug-in stays in memory",
            way->mode->name);
  }
  if (namesakes != NULL) dlclose(namesakes);
}

/* Both copies have their own detector. */
static void beside_a_copy(const struct way* way, FILE* out) {
  struct plugin first;
  struct plugin second;
  void* const library = load(way->path, way->mode, &first);
  void* const other = load(way->beside, way->mode, &second);
  require(library != other, "the copy is the plug-in itself", way->mode->name);
  const char* const document =
      "{\"frmW\":\"8\",\"frmH\":\"8\",\"frmChn\":\"1\",\"roi\":[{\"points\":[{\"x\":\"0\",\"y\":\"0\"}]}]}";
  require(first.initialization(document), "a detector in the first", way->mode->name);
  for (int round = 0; round < 3; ++round) run_scene(&second, out);
  require(!first.initialization(document), "the detector of the first is gone", way->mode->name);
  first.terminate();
  dlclose(other);
  dlclose(library);
}

/* The output of `act` in a child process; to be freed by the caller. */
static char* results(void (*act)(const struct way*, FILE*), const struct way* way) {
  FILE* const out = tmpfile();
  require(out != NULL, "a temporary file", way->mode->name);
  const pid_t child = fork();
  require(child >= 0, "fork", way->mode->name);
  if (child == 0) {
    act(way, out);
    exit(fclose(out) == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  int status = -1;
  require(waitpid(child, &status, 0) == child && status == 0, "the child process", way->mode->name);
  fseek(out, 0, SEEK_END);
  const long end = ftell(out);
  rewind(out);
  char* const text = calloc((size_t)end + 1, 1);
  require(end > 0 && text != NULL && fread(text, 1, (size_t)end, out) == (size_t)end, "reading the results",
          way->mode->name);
  fclose(out);
  return text;
}

static void expect(const char* expected, void (*act)(const struct way*, FILE*), const struct way* way) {
  char* const text = results(act, way);
  require(strcmp(text, expected) == 0, "results differ", way->mode->name);
  free(text);
}

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) return 2;
  const bool stays = argc == 5;
  const struct way simplest = {argv[1], NULL, &modes[0], stays};
  char* const expected = results(load_and_unload, &simplest);
  for (size_t i = 0; i < sizeof modes / sizeof modes[0]; ++i) {
    const struct way alone = {argv[1], NULL, &modes[i], stays};
    const struct way with_namesakes = {argv[1], argv[2], &modes[i], stays};
    const struct way with_copy = {argv[1], argv[3], &modes[i], stays};
    expect(expected, load_and_unload, &alone);
    expect(expected, load_and_unload, &with_namesakes);
    expect(expected, beside_a_copy, &with_copy);
  }
  free(expected);
  return EXIT_SUCCESS;
}
