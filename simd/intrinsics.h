// The intrinsics of x86-64 that the kernels are written in. For other architectures SIMDe translates them to
// what the compiler targets there.
#pragma once

#if defined(__x86_64__)
#include <immintrin.h>
#else
#ifndef SIMDE_ENABLE_NATIVE_ALIASES
#define SIMDE_ENABLE_NATIVE_ALIASES
#endif
#include <simde/x86/avx2.h>
#endif
