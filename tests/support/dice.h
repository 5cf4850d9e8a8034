// Random numbers, the same for the same seed.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <random>

class Dice {
 public:
  explicit Dice(std::uint32_t seed) : engine_(seed) {}
  int below(int limit) { return static_cast<int>(engine_() % static_cast<std::uint32_t>(limit)); }
  int between(int low, int high) { return low + below(high - low + 1); }
  bool chance(int percent) { return below(100) < percent; }
  template <class List>
  auto oneOf(const List& list) {
    return *(std::begin(list) + below(static_cast<int>(std::size(list))));
  }
  template <class T>
  T oneOf(std::initializer_list<T> values) {
    return values.begin()[below(static_cast<int>(values.size()))];
  }
  double normal(double deviation) { return deviation * normal_(engine_); }

 private:
  std::mt19937 engine_;
  std::normal_distribution<double> normal_{0, 1};
};
