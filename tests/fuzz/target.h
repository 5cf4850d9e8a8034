// Common code of the fuzz targets. A target is one source with LLVMFuzzerTestOneInput, driven by libFuzzer
// or, without it, by replay.cpp. Anything that ends the program is a finding: a sanitizer report, an
// exception that the called function does not document, and finding().
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

// Prints what is wrong and ends the program.
[[noreturn]] void finding(const std::string& what);

inline void require(bool condition, const char* what) {
  if (!condition) finding(what);
}
inline void requireSame(const std::string& difference) {
  if (!difference.empty()) finding(difference);
}

// An input as a sequence of choices. After its end, every choice is the first one.
class Choices {
 public:
  Choices(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

  bool over() const { return at_ == end_; }
  std::uint8_t byte() { return over() ? std::uint8_t{0} : *at_++; }
  int below(int limit) { return byte() % limit; }
  int between(int low, int high) { return low + below(high - low + 1); }
  bool flag() { return byte() % 2 != 0; }

  template <class T, std::size_t count>
  const T& of(const std::array<T, count>& values) {
    return values[byte() % count];
  }

  template <class Number>
  Number number() {
    Number value = 0;
    const std::size_t length = std::min(sizeof value, static_cast<std::size_t>(end_ - at_));
    if (length > 0) std::memcpy(&value, at_, length);
    at_ += length;
    return value;
  }

 private:
  const std::uint8_t* at_;
  const std::uint8_t* end_;
};

// During its lifetime, single allocations above `bytes` fail as if out of memory. A document may request
// frames of gigabytes; the failure must be handled.
class MemoryLimit {
 public:
  explicit MemoryLimit(std::size_t bytes);
  ~MemoryLimit();
  MemoryLimit(const MemoryLimit&) = delete;
  MemoryLimit& operator=(const MemoryLimit&) = delete;
};

}  // namespace fuzz
