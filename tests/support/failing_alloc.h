// Allocations that fail on demand. The test program's operator new, in its four common forms, and its
// posix_memalign are replaced by versions that count, and refuse the one request that a test names.
#pragma once

#include <cstdint>

namespace lm::test {

enum class Request { none, throwingNew, quietNew, aligned, plain };

// What is counted and refused: the library's own requests, or also malloc, calloc and realloc, which the
// libraries below it use. Under the address sanitizer those are not replaced.
enum class Reach { own, all };

// At most one object at a time. During its lifetime requests are counted from 1.
class FailingAlloc {
 public:
  explicit FailingAlloc(std::uint64_t failAt = 0,  // number of the request to refuse; 0: none
                        Reach reach = Reach::own);
  ~FailingAlloc();
  FailingAlloc(const FailingAlloc&) = delete;
  FailingAlloc& operator=(const FailingAlloc&) = delete;

  void stopFailing();  // later requests are counted and granted

  std::uint64_t requests() const;
  Request refused() const;  // kind of the request refused so far

  // Blocks allocated minus blocks released. Under the address sanitizer without aligned blocks; its own leak
  // check covers those.
  std::int64_t live() const;
};

}  // namespace lm::test
