/* Loads a plug-in as any C host does, and shows it a small moving scene. */
#ifndef LIGHTMOTION_TESTS_PACKAGE_MOVING_SCENE_H
#define LIGHTMOTION_TESTS_PACKAGE_MOVING_SCENE_H

#include <stdbool.h>
#include <stdio.h>

struct plugin {
  bool (*initialization)(const char* config);
  int (*frameProc)(const unsigned char* frame, const char* timestamp, int* resultLen);
  int (*getRes)(char* out);
  int (*terminate)(void);
};

struct scene {
  int width, height, channels;
  const char* settings; /* further members of the configuration document, each followed by a comma; or "" */
  const char* region;   /* the points of its only region */
};

/* A region that covers every pixel. */
extern const char whole_frame[];

/* Loads the library with all its references resolved at once. Exits on failure. */
struct plugin open_plugin(const char* path);

/* One session of the plug-in: 40 frames of noise in which two squares move side by side, one stops and the
   light changes. Writes the result documents to `out` unless it is null. Returns the number of frames that
   had one. Ends the program when a call fails. */
int show_scene(const struct plugin* plugin, const struct scene* scene, FILE* out);

#endif
