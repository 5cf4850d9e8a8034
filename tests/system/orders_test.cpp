// Calls in any order give what the plain model gives.
//
//   LIGHTMOTION_ORDERS_SEED      first seed; without LIGHTMOTION_ORDERS_MINUTES the only one
//   LIGHTMOTION_ORDERS_MINUTES   how long to continue with further seeds
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

#include "tests/system/orders.h"

namespace {

constexpr int steps = 300;

int number(const char* variable, int otherwise) {
  const char* text = std::getenv(variable);
  return text == nullptr ? otherwise : std::atoi(text);
}

TEST(OrdersOfCalls, GiveWhatThePlainModelGives) {
  const bool repeats = std::getenv("LIGHTMOTION_ORDERS_SEED") != nullptr;
  const auto first = static_cast<std::uint32_t>(number("LIGHTMOTION_ORDERS_SEED", 1));
  const std::chrono::minutes minutes(number("LIGHTMOTION_ORDERS_MINUTES", 0));
  const std::uint32_t rounds = repeats ? 1 : 25;
  const auto end = std::chrono::steady_clock::now() + minutes;
  std::uint32_t seed = first;
  for (; seed < first + rounds || std::chrono::steady_clock::now() < end; ++seed) {
    ASSERT_EQ(orders::run(seed, steps), "");
  }
  if (minutes.count() > 0) std::printf("%u rounds of %d calls\n", seed - first, steps);
}

}  // namespace
