// The kernels for AVX2.
#define LIGHTMOTION_LEVEL avx2
#include "compact/learn_row.h"
#include "compact/seed_row.h"
#include "compact/take_row.h"
