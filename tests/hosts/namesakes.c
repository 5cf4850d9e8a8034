/* The rest of a library that exports every name of the plug-in: all functions end here, and the variables
 * hold what the plug-in's own hold, because the loader gives all libraries the first variable of a name. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

extern int32_t THRESH_SAME_PIXEL_x2, THRESH_SAME_PIXEL_x3, g_seed;
int32_t THRESH_SAME_PIXEL_x2 = 20;
int32_t THRESH_SAME_PIXEL_x3 = 30;
int32_t g_seed = 0;

void namesake_called(void);
void namesake_called(void) {
  fputs("failed: a function of another library was called that has the name of the plug-in's own\n", stderr);
  exit(1);
}
