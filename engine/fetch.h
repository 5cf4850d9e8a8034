// Asking for memory some time before it is worked on. Only advice to the processor: nothing is read or
// written.
#pragma once

namespace lm {

// Into the second cache: on the way to the first only a few requests are under way at a time, and more of
// them would hold up the work in between.
inline void fetch(const void* address) { __builtin_prefetch(address, 0, 2); }
inline void fetchToWrite(const void* address) { __builtin_prefetch(address, 1, 2); }

}  // namespace lm
