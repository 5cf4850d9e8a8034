/* Detectors by handle in C: passes raw frames to a detector and prints what moves.
 *   cc detector.c $(pkg-config --cflags --libs lightmotion) -o detector
 *   ./detector                                     a built-in moving square
 *   ./detector WIDTH HEIGHT CHANNELS <frames.raw   8-bit frames, rows without padding; 1, 3 or 4 channels
 * Prints one line per box: timestamp, left, top, width and height in pixels.
 * Exit status: 0 success, 1 failure, 2 wrong usage or sizes. */
#include <lightmotion/lightmotion.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int failed(int status, const char* what) {
  fprintf(stderr, "detector: %s\n", what);
  return status;
}

/* 40 frames of 160 x 120 grey pixels; from the second on, a bright square moves to the right. */
static size_t draw(unsigned char* frame, long number) {
  memset(frame, 60, 160 * 120);
  for (long y = 48; number > 0 && y < 72; ++y) memset(frame + y * 160 + 2 * number, 200, 24);
  return number < 40 ? 160 * 120 : 0;
}

/* Frames are 40 ms apart. */
static int run(lightmotion_detector* detector, unsigned char* frame, size_t bytes, int built_in) {
  for (long number = 0;; ++number) {
    const size_t got = built_in ? draw(frame, number) : fread(frame, 1, bytes, stdin);
    if (got == 0) return ferror(stdin) ? failed(1, "the input cannot be read") : 0;
    if (got < bytes) return failed(1, "the input ends within a frame");

    const lightmotion_box* boxes;
    const int count = lightmotion_process(detector, frame, 0, 1 + 40 * number, &boxes);
    if (count < 0) return failed(1, lightmotion_error_text(count));
    for (int i = 0; i < count; ++i) {
      const lightmotion_box* box = boxes + i;
      printf("%ld %d %d %d %d\n", 1 + 40 * number, (int)box->x, (int)box->y, (int)box->width,
             (int)box->height);
    }
    if (fflush(stdout) != 0) return failed(1, "the output cannot be written");
  }
}

int main(int argc, char** argv) {
  static const char* const square[] = {"", "160", "120", "1"};
  const char* const* sizes = argc == 1 ? square : (const char* const*)argv;
  if (argc != 1 && argc != 4) return failed(2, "usage: detector [WIDTH HEIGHT CHANNELS]");
  for (int i = 1; i < 4; ++i) {
    if (sizes[i][0] == '\0' || strlen(sizes[i]) > 9 || sizes[i][strspn(sizes[i], "0123456789")] != '\0')
      return failed(2, "usage: each size is a whole number");
  }

  char configuration[128], message[512];
  snprintf(configuration, sizeof configuration, "{\"frmW\": %s, \"frmH\": %s, \"frmChn\": %s}", sizes[1],
           sizes[2], sizes[3]);
  lightmotion_detector* const detector = lightmotion_create(configuration, message, sizeof message);
  if (detector == NULL) return failed(2, message);
  if (message[0] != '\0') fprintf(stderr, "detector: %s\n", message); /* warnings */

  lightmotion_info info = {.struct_size = sizeof info};
  lightmotion_get_info(detector, &info);
  const size_t bytes = (size_t)info.width * (size_t)info.height * (size_t)info.bytes_per_pixel;
  unsigned char* const frame = malloc(bytes);
  const int status = frame == NULL ? failed(1, "out of memory") : run(detector, frame, bytes, argc == 1);
  free(frame);
  lightmotion_destroy(detector);
  return status;
}
