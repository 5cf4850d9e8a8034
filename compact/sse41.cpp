// The kernels for SSE4.1.
#define LIGHTMOTION_LEVEL sse41
#include "compact/learn_row.h"
#include "compact/seed_row.h"
#include "compact/take_row.h"
