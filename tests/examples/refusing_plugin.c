/* Replaces the plug-in: refuses every configuration, or loses its detector, according to REFUSE_AT. */
#include <stdlib.h>
#include <string.h>

#include "plugin/entry_points.h"

static bool refuse_at(const char* what) {
  const char* const place = getenv("REFUSE_AT");
  return place != NULL && strcmp(place, what) == 0;
}

bool initialization(const char* config) { return config != NULL && !refuse_at("start"); }

int frameProc(const unsigned char* frame, const char* timestamp, int* resultLen) {
  (void)frame;
  (void)timestamp;
  *resultLen = 0;
  return refuse_at("frame") ? 0 : 1;
}

int getRes(char* out) {
  *out = '\0';
  return 1;
}

int terminate(void) { return 1; }
