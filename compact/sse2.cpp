// The kernels for SSE2, which every x86-64 processor has.
#define LIGHTMOTION_LEVEL sse2
#include "compact/learn_row.h"
#include "compact/seed_row.h"
#include "compact/take_row.h"
