/* The smallest complete host in C: loads the plug-in, shows it raw frames and prints what moves.
 *   cc host.c $(pkg-config --cflags lightmotion) -o host
 *   ./host                                     a moving square of its own
 *   ./host WIDTH HEIGHT CHANNELS <frames.raw   8-bit frames, rows without padding; 1, 3 or 4 channels
 * Exit status: 0 fine, 1 trouble, 2 wrong use. Everything is checked first: C cannot catch what is thrown. */
#include <dlfcn.h>
#include <limits.h>
#include <plugin/entry_points.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The whole frame counts; it starts left of itself because a region's own left edge lies outside it. */
static const char settings[] =
    "{\"frmW\":\"%ld\",\"frmH\":\"%ld\",\"frmChn\":\"%ld\",\"roi\":[{\"name\":\"\",\"points\":[{\"x\":\"-1\","
    "\"y\":\"-1\"},{\"x\":\"2\",\"y\":\"-1\"},{\"x\":\"2\",\"y\":\"2\"},{\"x\":\"-1\",\"y\":\"2\"}]}]}";

static void stop(int status, const char* what, const char* detail) {
  fprintf(stderr, "host: %s%s\n", what, detail);
  exit(status);
}

static void* find(void* library, const char* name) {
  void* const function = dlsym(library, name);
  if (function == NULL) stop(1, "not the plug-in, it has no ", name);
  return function;
}

/* 40 frames of 160 x 120 grey pixels: from the second on, a bright square walks to the right. */
static size_t draw(unsigned char* frame, long number) {
  memset(frame, 60, 160 * 120);
  for (long y = 48; number > 0 && y < 72; ++y) memset(frame + y * 160 + 2 * number, 200, 24);
  return number < 40 ? 160 * 120 : 0;
}

int main(int argc, char** argv) {
  if (argc != 1 && argc != 4) stop(2, "usage: host [WIDTH HEIGHT CHANNELS <frames.raw]", "");
  long size[] = {160, 120, 1};
  for (int i = 1; i < argc; ++i) {
    char* end;
    size[i - 1] = strtol(argv[i], &end, 10);
    if (size[i - 1] < 1 || *end != '\0') stop(2, "not a size: ", argv[i]);
  }
  const long width = size[0], height = size[1], channels = size[2];
  if (channels == 2 || channels > 4) stop(2, "channels have to be 1, 3 or 4, not ", argv[3]);
  if (width > INT_MAX / channels / height) stop(2, "no frame can be that large", "");
  const size_t bytes = (size_t)(width * height * channels);
  unsigned char* const frame = malloc(bytes);
  if (frame == NULL) stop(1, "no memory for a frame", "");
  void* const library = dlopen("liblightmotion.so.1", RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) stop(1, "the plug-in cannot be loaded: ", dlerror());
  bool (*start)(const char*);
  int (*process)(const unsigned char*, const char*, int*), (*fetch)(char*), (*finish)(void);
  *(void**)&start = find(library, "initialization"); /* POSIX's way: ISO C has no such conversion */
  *(void**)&process = find(library, "frameProc");
  *(void**)&fetch = find(library, "getRes");
  *(void**)&finish = find(library, "terminate");

  char text[512], *document = NULL;
  snprintf(text, sizeof text, settings, width, height, channels);
  if (!start(text)) stop(1, "the plug-in refuses its configuration", "");
  for (long number = 0;; ++number) {
    const size_t got = argc == 4 ? fread(frame, 1, bytes, stdin) : draw(frame, number);
    if (got == 0 && !ferror(stdin)) break;
    if (got < bytes) stop(1, "the input ends within a frame", "");
    int length = 0;
    snprintf(text, sizeof text, "%ld", 1 + 40 * number); /* milliseconds, at 25 frames a second */
    if (process(frame, text, &length) != 1) stop(1, "the plug-in has no detector any more", "");
    if (length == 0) continue;
    document = realloc(document, (size_t)length + 1);
    if (document == NULL || fetch(document) != 1) stop(1, "no result to be had", "");
    fputs(document, stdout);
  }
  finish();
  free(document);
  free(frame);
  if (fflush(stdout) != 0 || ferror(stdout)) stop(1, "the results cannot be written", "");
  return 0;
}
