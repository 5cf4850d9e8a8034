// Finding busy pixels and settling them: every version against the rules, pixel by pixel.
#include "tests/simd/model_kernels.h"

namespace {

constexpr lm::LifeRule rule{.limit = 160.0F, .absorbed = 161.0F, .band2 = 20, .band3 = 30};

lm::ClassifyPlanes planesOf(const ModelScene& s, std::int32_t unchanged, bool accountLife,
                            lm::LifeRule life = rule) {
  return {.roiMask = s.roi.data(),
          .rdDiff = s.difference.data(),
          .prevFgMask = s.before.data(),
          .fgMask = s.now.data(),
          .absorbMask = s.absorbed.data(),
          .fgLife = s.life.data(),
          .unchanged = unchanged,
          .accountLife = accountLife,
          .life = life};
}

// The kind that a pixel must have: its BusyPixels mask, or '.' for an idle one.
char kindOf(const ModelScene& s, std::size_t i, std::int32_t unchanged, bool accountLife) {
  if (s.roi[i] == 0) return s.now[i] != 0 ? 'o' : '.';
  if (s.difference[i] <= unchanged && s.before[i] == 0) {
    const bool lives = s.now[i] != 0 || s.absorbed[i] == 255 || s.life[i] >= 1.0F;
    return accountLife && lives ? 'u' : '.';
  }
  return accountLife && s.life[i] > 160.0F ? 'a' : 'c';
}

char kindOf(const lm::BusyPixels& pixels, std::size_t k) {
  char kind = '.';
  const auto take = [&](std::uint32_t mask, char name) {
    if ((mask >> k & 1U) != 0) kind = kind == '.' ? name : '!';  // in two masks: an error
  };
  take(pixels.outside, 'o');
  take(pixels.unchanged, 'u');
  take(pixels.absorbed, 'a');
  take(pixels.compared, 'c');
  return kind;
}

class FindBusy : public VersionTest<lm::FindBusyFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, FindBusy, ::testing::ValuesIn(lm::findBusyVersions), VersionName());

class SettleBlock : public VersionTest<lm::SettleBlockFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, SettleBlock, ::testing::ValuesIn(lm::settleBlockVersions),
                         VersionName());

TEST_P(FindBusy, ListsBusyBlocksWithTheirPixels) {
  Random random;
  for (const std::size_t count : modelCounts) {
    for (const std::int32_t unchanged : modelThresholds) {
      for (const bool accountLife : {false, true}) {
        const ModelScene s(count, random);
        const lm::ClassifyPlanes planes = planesOf(s, unchanged, accountLife);
        const std::size_t room = 1 + random.next() % 4;
        std::string found(count, '.');
        std::string expected(count, '.');
        for (std::size_t i = 0; i < count; ++i) expected[i] = kindOf(s, i, unchanged, accountLife);
        for (std::size_t from = 0; from < count;) {
          std::vector<lm::BusyBlock> blocks(room);
          const std::size_t size = GetParam().function(planes, from, count, blocks.data(), room);
          ASSERT_TRUE(size == room || from >= count) << "stopped early";
          for (std::size_t b = 0; b < size; ++b) {
            const auto& [begin, pixels] = blocks[b];
            ASSERT_EQ(begin % 32, 0U);
            ASSERT_TRUE(pixels.any());
            for (std::size_t k = 0; k < 32 && begin + k < count; ++k) found[begin + k] = kindOf(pixels, k);
          }
        }
        ASSERT_EQ(found, expected) << "unchanged " << unchanged;
      }
    }
  }
}

struct Settled {
  std::vector<std::uint8_t> now, absorbed;
  std::vector<float> life;
};

float decayed(float life) { return life >= 1.0F ? life - 0.8F : life; }

float gained(float life, int change, const lm::LifeRule& bands) {
  if (change <= 10) return life + 1.0F;
  if (change <= bands.band2) return life + 0.5F;
  return change <= bands.band3 ? life + 0.2F : decayed(life);
}

// Applies the rules pixel by pixel.
Settled settledOf(const ModelScene& s, std::size_t count, const lm::ClassifyPlanes& planes,
                  const std::string& kinds, std::uint32_t matched) {
  Settled e{s.now.values(), s.absorbed.values(), s.life.values()};
  for (std::size_t i = 0; i < count; ++i) {
    const char kind = kinds[i];
    if (kind == 'o') e.now[i] = 0;
    if (kind == 'c') e.now[i] = (matched >> i & 1U) != 0 ? 0 : 255;
    if (kind == 'a') {
      e.now[i] = 0;
      e.absorbed[i] = 255;
      e.life[i] = planes.life.absorbed;
    }
    if (!planes.accountLife || (kind != 'u' && kind != 'c')) continue;
    if (e.now[i] == 255) {
      e.life[i] = gained(e.life[i], s.difference[i], planes.life);
    } else {
      e.life[i] = e.absorbed[i] == 255 ? planes.life.absorbed : decayed(e.life[i]);
    }
  }
  return e;
}

TEST_P(SettleBlock, UpdatesBusyPixelsAndNoOthers) {
  constexpr lm::LifeRule rules[] = {
      rule,
      {.limit = -1.0F, .absorbed = 0.0F, .band2 = -5, .band3 = 300},
      {.limit = 1e9F, .absorbed = 16777216.0F, .band2 = INT_MIN, .band3 = INT_MAX},
      {.limit = 3.0F, .absorbed = 4.0F, .band2 = 30, .band3 = 9}};
  Random random;
  for (const std::size_t count : {1U, 31U, 32U}) {
    for (int round = 0; round < 300; ++round) {
      const ModelScene s(count, random);
      const lm::ClassifyPlanes planes = planesOf(s, 10, round % 3 != 0, rules[round % std::size(rules)]);
      std::string kinds(count, '.');
      lm::BusyPixels busy{};
      for (std::size_t i = 0; i < count; ++i) {
        s.difference[i] = random.byteOf({0, 9, 10, 11, 20, 21, 30, 31, 255});
        kinds[i] = "..ouac"[random.next() % (planes.accountLife ? 6 : 4)];
        if (!planes.accountLife && kinds[i] == 'u') kinds[i] = 'c';
        const std::uint32_t bit = 1U << i;
        if (kinds[i] == 'o') busy.outside |= bit;
        if (kinds[i] == 'u') busy.unchanged |= bit;
        if (kinds[i] == 'a') busy.absorbed |= bit;
        if (kinds[i] == 'c') busy.compared |= bit;
      }
      const std::uint32_t matched = random.bits() & busy.compared;
      const Settled expected = settledOf(s, count, planes, kinds, matched);
      GetParam().function(planes, 0, count, busy, matched);
      ASSERT_EQ(s.now.values(), expected.now) << kinds;
      ASSERT_EQ(s.absorbed.values(), expected.absorbed) << kinds;
      ASSERT_EQ(s.life.values(), expected.life) << kinds;
      ASSERT_EQ(s.now.damage() + s.absorbed.damage() + s.life.damage(), "");
    }
  }
}

}  // namespace
