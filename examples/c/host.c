/* The smallest complete host in C: loads the plug-in, passes it raw frames and prints what moves.
 *   cc host.c $(pkg-config --cflags lightmotion) -o host
 *   ./host                                     a built-in moving square
 *   ./host WIDTH HEIGHT CHANNELS <frames.raw   8-bit frames, rows without padding; 1, 3 or 4 channels
 * Prints one line per box: timestamp, left, top, width and height in pixels.
 * Exit status: 0 success, 1 failure, 2 wrong usage. All input is checked first: C cannot catch exceptions. */
#include <dlfcn.h>
#include <limits.h>
#include <plugin/entry_points.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The region is larger than the frame, because a region's own left edge is outside it. */
static const char settings[] =
    "{\"frmW\":\"%ld\",\"frmH\":\"%ld\",\"frmChn\":\"%ld\",\"roi\":[{\"name\":\"\",\"points\":[{\"x\":\"-1\","
    "\"y\":\"-1\"},{\"x\":\"2\",\"y\":\"-1\"},{\"x\":\"2\",\"y\":\"2\"},{\"x\":\"-1\",\"y\":\"2\"}]}]}";

static void stop(int status, const char* what, const char* detail) {
  fprintf(stderr, "host: %s%s\n", what, detail);
  exit(status);
}

static void* find(void* library, const char* name) {
  void* const function = dlsym(library, name);
  if (function == NULL) stop(1, "not the plug-in: it does not export ", name);
  return function;
}

/* 40 frames of 160 x 120 grey pixels; from the second on, a bright square moves to the right. */
static size_t draw(unsigned char* frame, long number) {
  memset(frame, 60, 160 * 120);
  for (long y = 48; number > 0 && y < 72; ++y) memset(frame + y * 160 + 2 * number, 200, 24);
  return number < 40 ? 160 * 120 : 0;
}

static long pixels(double fraction, long size) { return (long)(fraction * (double)size + 0.5); }

/* A box can extend beyond the right or bottom border: clip it before any use. */
static double clipped(double start, double length) { return start + length > 1 ? 1 - start : length; }

/* Reads the four numbers of each box, in any order. Within strings quotation marks are escaped, so only keys
 * match. */
static void print_boxes(const char* document, const char* timestamp, long width, long height) {
  static const char* const keys[] = {"\"x\":", "\"y\":", "\"width\":", "\"height\":"};
  double box[4];
  int found = 0;
  for (; (document = strchr(document, '"')) != NULL; ++document) {
    for (size_t i = 0; i < 4; ++i) {
      const size_t length = strlen(keys[i]);
      if (strncmp(document, keys[i], length) != 0) continue;
      box[i] = strtod(document + length, NULL);
      ++found;
    }
    if (found < 4) continue;
    printf("%s %ld %ld %ld %ld\n", timestamp, pixels(box[0], width), pixels(box[1], height),
           pixels(clipped(box[0], box[2]), width), pixels(clipped(box[1], box[3]), height));
    found = 0;
  }
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
  if (channels == 2 || channels > 4) stop(2, "channels must be 1, 3 or 4, not ", argv[3]);
  if (width > INT_MAX / channels / height) stop(2, "the frame is too large: 2147483647 bytes at most", "");
  const size_t bytes = (size_t)(width * height * channels);
  unsigned char* const frame = malloc(bytes);
  if (frame == NULL) stop(1, "out of memory", "");
  void* const library = dlopen("liblightmotion.so.1", RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) stop(1, "cannot load the plug-in: ", dlerror());
  bool (*start)(const char*);
  int (*process)(const unsigned char*, const char*, int*), (*fetch)(char*), (*finish)(void);
  *(void**)&start = find(library, "initialization"); /* as POSIX recommends: ISO C lacks the conversion */
  *(void**)&process = find(library, "frameProc");
  *(void**)&fetch = find(library, "getRes");
  *(void**)&finish = find(library, "terminate");

  char text[512], *document = NULL;
  snprintf(text, sizeof text, settings, width, height, channels);
  if (!start(text)) stop(1, "the plug-in refused the configuration", "");
  for (long number = 0;; ++number) {
    const size_t got = argc == 4 ? fread(frame, 1, bytes, stdin) : draw(frame, number);
    if (got == 0 && !ferror(stdin)) break;
    if (got < bytes) stop(1, "the input ends within a frame", "");
    int length = 0;
    snprintf(text, sizeof text, "%ld", 1 + 40 * number); /* milliseconds, at 25 frames per second */
    if (process(frame, text, &length) != 1) stop(1, "the plug-in lost its detector", "");
    if (length == 0) continue;
    document = realloc(document, (size_t)length + 1);
    if (document == NULL || fetch(document) != 1) stop(1, "cannot fetch the result", "");
    print_boxes(document, text, width, height);
  }
  finish();
  free(document);
  free(frame);
  if (fflush(stdout) != 0 || ferror(stdout)) stop(1, "cannot write the results", "");
  return 0;
}
