/* Stands in for the plug-in: refuses every configuration, or loses its detector, as REFUSE_AT says. */
#include <stdlib.h>
#include <string.h>

#include "plugin/entry_points.h"

static bool asked_for(const char* what) {
  const char* const wish = getenv("REFUSE_AT");
  return wish != NULL && strcmp(wish, what) == 0;
}

bool initialization(const char* config) { return config != NULL && !asked_for("start"); }

int frameProc(const unsigned char* frame, const char* timestamp, int* resultLen) {
  (void)frame;
  (void)timestamp;
  *resultLen = 0;
  return asked_for("frame") ? 0 : 1;
}

int getRes(char* out) {
  *out = '\0';
  return 1;
}

int terminate(void) { return 1; }
