// Byte masks and label maps as text, one line per row, so that tests show their frames and a failure prints
// both pictures with a diff.
//   '.' 0   digits their value   'x' 252   'y' 253   'z' 254   '#' 255
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lm::test {

using Bytes = std::vector<std::uint8_t>;
using Rows = std::vector<std::string>;

// The bytes of a picture, row after row.
Bytes bytesOf(const Rows& rows);

// The symbol of one value; values without a symbol appear as "<300>".
std::string symbolOf(std::uint64_t value);

// The text of a picture: what `drawing` gives for the same bytes.
std::string picture(const Rows& rows);

// The picture of a plane of `count` elements, `width` per row.
template <class T>
std::string drawing(const T* plane, std::size_t count, int width) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    if (i % static_cast<std::size_t>(width) == 0) {
      text += '\n';
    }
    text += symbolOf(plane[i]);
  }
  return text;
}

template <class T>
std::string drawing(const std::vector<T>& plane, int width) {
  return drawing(plane.data(), plane.size(), width);
}

}  // namespace lm::test
