// Memory between two inaccessible pages, for code that must stay within an array.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

class GuardedBuffer {
 public:
  // The inaccessible page next to which the array is placed, as closely as its alignment allows.
  enum class Against { front, back };

  // Room for arrays of up to `capacity` bytes.
  explicit GuardedBuffer(std::size_t capacity);
  ~GuardedBuffer();
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;

  // Takes `size` bytes that begin `offset` (0 to 31) past a multiple of 32; the array before is gone.
  // Accesses past an inaccessible page's border crash; the bytes between the array and the pages hold a
  // pattern.
  void place(std::size_t size, std::size_t offset, Against page);

  std::uint8_t* begin() const { return begin_; }
  std::uint8_t* end() const { return begin_ + size_; }
  std::size_t size() const { return size_; }

  // Describes the first byte written outside the array since place(); empty if there is none.
  std::string damage() const;

 private:
  std::uint8_t* mapping_;  // inaccessible page, `room_` bytes, inaccessible page
  std::size_t room_;
  std::uint8_t* begin_;
  std::size_t size_ = 0;
};
