// Prefetches: hints to the processor, nothing is read or written.
#pragma once

namespace lm {

// To L2: L1 has few fill buffers, and more requests than these would hold up the work in between.
inline void prefetch(const void* address) { __builtin_prefetch(address, 0, 2); }
inline void prefetchToWrite(const void* address) { __builtin_prefetch(address, 1, 2); }

}  // namespace lm
