#include "tests/package/moving_scene.h"

#include <dlfcn.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

const char whole_frame[] =
    "{\"x\":\"-1\",\"y\":\"-1\"},{\"x\":\"2\",\"y\":\"-1\"},{\"x\":\"2\",\"y\":\"2\"},{\"x\":\"-1\",\"y\":"
    "\"2\"}";

enum { frames = 40 };

static void require(bool condition, const char* what) {
  if (condition) return;
  fprintf(stderr, "failed: %s\n", what);
  exit(1);
}

/* POSIX guarantees that a function's address fits. */
static void find(void* library, const char* name, void* function) {
  void* const address = dlsym(library, name);
  require(address != NULL, name);
  memcpy(function, &address, sizeof address);
}

struct plugin open_plugin(const char* path) {
  void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  require(library != NULL, path);
  struct plugin plugin;
  find(library, "initialization", &plugin.initialization);
  find(library, "frameProc", &plugin.frameProc);
  find(library, "getRes", &plugin.getRes);
  find(library, "terminate", &plugin.terminate);
  return plugin;
}

static bool is_inside(int x, int y, int left, int top, int side) {
  return x >= left && x < left + side && y >= top && y < top + side;
}

static void draw(unsigned char* frame, const struct scene* scene, int number, uint32_t* noise) {
  const int side = scene->height / 4;
  const int left = scene->width * (number < 20 ? number : 20) / frames;
  const int light = number >= 30 ? 12 : 0;
  for (int y = 0; y < scene->height; ++y) {
    for (int x = 0; x < scene->width; ++x) {
      const bool object = is_inside(x, y, left, side, side) ||
                          is_inside(x, y, scene->width * number / frames + side + 2, side, side);
      for (int c = 0; c < scene->channels; ++c) {
        *noise = *noise * 1664525U + 1013904223U;
        const int value = (object ? 200 - 20 * c : 60 + 20 * c + x % 32) + light + (int)(*noise >> 30U);
        *frame++ = (unsigned char)value;
      }
    }
  }
}

static void start(const struct plugin* plugin, const struct scene* scene) {
  char config[2048];
  snprintf(config, sizeof config,
           "{%s\"frmW\":\"%d\",\"frmH\":\"%d\",\"frmChn\":\"%d\","
           "\"roi\":[{\"name\":\"yard\",\"points\":[%s]}]}",
           scene->settings, scene->width, scene->height, scene->channels, scene->region);
  require(plugin->initialization(config), "initialization");
}

int show_scene(const struct plugin* plugin, const struct scene* scene, FILE* out) {
  start(plugin, scene);
  unsigned char* const frame = malloc((size_t)(scene->width * scene->height * scene->channels));
  require(frame != NULL, "memory for a frame");
  uint32_t noise = 1;
  int with_result = 0;
  for (int number = 0; number < frames; ++number) {
    draw(frame, scene, number, &noise);
    char timestamp[16];
    snprintf(timestamp, sizeof timestamp, "%d", 1000 + 40 * number);
    int length = -1;
    require(plugin->frameProc(frame, timestamp, &length) == 1 && length >= 0, "frameProc");
    if (length == 0) continue;
    ++with_result;
    char* const text = malloc((size_t)length + 1);
    require(text != NULL && plugin->getRes(text) == 1 && strlen(text) == (size_t)length, "getRes");
    if (out != NULL) fputs(text, out);
    free(text);
  }
  free(frame);
  require(plugin->terminate() == 1, "terminate");
  return with_result;
}
