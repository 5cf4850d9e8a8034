// The compact engine gives what the open one gives, over random configurations and scenes.
//
//   LIGHTMOTION_COMPACT_SEED      first seed; alone, only this one is run
//   LIGHTMOTION_COMPACT_MINUTES   seed after seed for so long
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

#include "tests/compact/pair.h"
#include "tests/compact/portable.h"
#include "tests/compact/scenes.h"

namespace {

using lm::compact::Shape;

std::vector<std::string> anyEntries(const Shape& shape, Dice& dice) {
  std::vector<std::string> entries = sizeEntries(shape);
  for (const auto& more : {anyDocumentEntries(dice), anyFurtherEntries(dice)}) {
    entries.insert(entries.end(), more.begin(), more.end());
  }
  return entries;
}

std::string run(std::uint32_t seed, const lm::compact::Kernels& kernels) {
  Dice dice(seed);
  const int scale = seed % 64 == 0 ? 4 : 1;  // some seeds of a long job take larger frames
  const Shape shape{dice.between(1, 150 * scale), dice.between(1, 60 * scale), dice.oneOf({1, 3, 3, 4})};
  const Scene scene{shape, anyKind(dice), dice.oneOf({0.5, 1.5, 2.5, 4.0})};
  std::vector<polygon> include;
  std::vector<polygon> exclude;
  if (dice.chance(40)) {
    include.push_back(wholeOf(shape));
  } else {
    for (int count = dice.between(1, 3); count > 0; --count) include.push_back(anyPolygon(shape, dice));
  }
  if (dice.chance(40)) exclude.push_back(anyPolygon(shape, dice));
  Pair pair(shape, anyEntries(shape, dice), include, exclude, kernels);
  if (!pair.suits()) return "the compact engine does not take it";
  const int frames = dice.between(20, scene.kind == Kind::stopping ? 120 : 60);
  std::int64_t time = 1000;
  for (int frame = 0; frame < frames; ++frame) {
    const bool refused = dice.chance(2);
    const std::string difference =
        pair.feed(refused ? std::vector<std::uint8_t>{} : draw(scene, frame, dice), std::to_string(time));
    if (!difference.empty()) {
      return "seed " + std::to_string(seed) + ", frame " + std::to_string(frame) + ": " + difference;
    }
    time += dice.chance(5) ? 500 : 40;
  }
  return "";
}

int number(const char* variable, int otherwise) {
  const char* text = std::getenv(variable);
  return text == nullptr ? otherwise : std::atoi(text);
}

TEST(CompactEngine, GivesWhatTheOpenEngineGives) {
  const bool repeats = std::getenv("LIGHTMOTION_COMPACT_SEED") != nullptr;
  const auto first = static_cast<std::uint32_t>(number("LIGHTMOTION_COMPACT_SEED", 1));
  const std::chrono::minutes minutes(number("LIGHTMOTION_COMPACT_MINUTES", 0));
  const std::uint32_t rounds = repeats ? 1 : 60;
  const auto end = std::chrono::steady_clock::now() + minutes;
  std::uint32_t seed = first;
  for (; seed < first + rounds || std::chrono::steady_clock::now() < end; ++seed) {
    for (const int level : levels())
      ASSERT_EQ(run(seed, lm::compact::kernelsFor(level)), "") << "level " << level;
  }
  if (minutes.count() > 0) std::printf("%u configurations\n", seed - first);
}

TEST(CompactEngine, GivesTheSameWithTheKernelsOfOtherArchitectures) {
  for (std::uint32_t seed = 1; seed <= 12; ++seed) ASSERT_EQ(run(seed, portableKernels()), "");
}

}  // namespace
