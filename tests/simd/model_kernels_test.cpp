// The kernels of the background model, every version against a model of its contract, between guard pages.
#include "simd/model_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "simd/cpu_level.h"
#include "tests/support/guarded_buffer.h"

namespace {

using Against = GuardedBuffer::Against;

// A generator that never changes.
class Random {
 public:
  std::uint32_t next() {
    state_ = state_ * 1664525U + 1013904223U;
    return state_ >> 8;
  }
  std::uint8_t oneOf(const std::vector<std::uint8_t>& values) { return values[next() % values.size()]; }
  bool rarely() { return next() % 29 == 0; }

 private:
  std::uint32_t state_ = 12345;
};

// A plane of `count` elements that ends at, or begins behind, an inaccessible page.
template <typename T>
class Plane {
 public:
  Plane(std::size_t count, Against page) : buffer_(count * sizeof(T) + 64) {
    buffer_.place(count * sizeof(T), page == Against::front ? 0 : (32 - count * sizeof(T) % 32) % 32, page);
  }
  T* data() const { return reinterpret_cast<T*>(buffer_.begin()); }
  T& operator[](std::size_t i) const { return data()[i]; }
  std::string damage() const { return buffer_.damage(); }

 private:
  GuardedBuffer buffer_;
};

struct Level {
  const char* name;
  int level;
};

class ModelKernels : public ::testing::TestWithParam<Level> {
 protected:
  void SetUp() override {
    if (GetParam().level > GetCpuInstructionSet()) GTEST_SKIP() << "this processor lacks the level";
    kernels_ = lm::modelKernelsFor(GetParam().level);
  }
  lm::ModelKernels kernels_{};
};
INSTANTIATE_TEST_SUITE_P(EveryVersion, ModelKernels, ::testing::Values(Level{"plain", 7}, Level{"avx2", 8}),
                         [](const auto& test) { return std::string(test.param.name); });

const std::size_t counts[] = {0, 1, 7, 31, 32, 33, 63, 64, 65, 100, 257};
const std::int32_t thresholds[] = {INT_MIN, -1, 0, 1, 10, 254, 255, INT_MAX};

// Planes as a scene may have them: mostly idle, so that blocks of both kinds occur.
struct Scene {
  Scene(std::size_t count, Against page, Random& random)
      : roi(count, page),
        difference(count, page),
        before(count, page),
        now(count, page),
        absorbed(count, page),
        light(count, page),
        life(count, page),
        timer(count, page) {
    for (std::size_t i = 0; i < count; ++i) {
      roi[i] = random.rarely() ? 0 : random.oneOf({1, 1, 255});
      difference[i] = random.rarely() ? random.oneOf({1, 2, 10, 11, 254, 255}) : 0;
      before[i] = random.rarely() ? random.oneOf({1, 255}) : 0;
      now[i] = random.rarely() ? 255 : 0;
      absorbed[i] = random.rarely() ? random.oneOf({1, 254, 255}) : 0;
      light[i] = random.rarely() ? random.oneOf({1, 2, 10, 11, 254, 255}) : 0;
      life[i] = random.rarely() ? 1.0F : 0.99F;
      timer[i] = random.rarely() ? INT_MIN : static_cast<std::int32_t>(random.next() % 5) - 2;
    }
  }

  Plane<std::uint8_t> roi, difference, before, now, absorbed, light;
  Plane<float> life;
  Plane<std::int32_t> timer;
};

bool isBusy(const Scene& s, std::size_t i, std::int32_t unchanged, bool accountLife) {
  if (s.roi[i] == 0) return s.now[i] != 0;
  if (s.difference[i] > unchanged || s.before[i] != 0) return true;
  return accountLife && (s.now[i] != 0 || s.absorbed[i] == 255 || s.life[i] >= 1.0F);
}

TEST_P(ModelKernels, BusyBlocksAreFoundWithTheirPixels) {
  Random random;
  for (const std::size_t count : counts) {
    for (const std::int32_t unchanged : thresholds) {
      for (const bool accountLife : {false, true}) {
        const Scene s(count, count % 2 == 0 ? Against::front : Against::back, random);
        const lm::ClassifyPlanes planes{s.roi.data(),      s.difference.data(), s.before.data(), s.now.data(),
                                        s.absorbed.data(), s.life.data(),       unchanged,       accountLife};
        std::vector<bool> found(count, false);
        std::size_t from = 0;
        while (from < count) {
          std::uint32_t busy = 0;
          const std::size_t at = kernels_.nextBusyBlock(planes, from, count, busy);
          ASSERT_EQ(at == count, busy == 0);
          if (at == count) break;
          ASSERT_EQ((at - from) % 32, 0U);
          for (std::size_t k = 0; k < 32; ++k) {
            if ((busy >> k & 1U) == 0) continue;
            ASSERT_LT(at + k, count);
            found[at + k] = true;
          }
          from = at + 32;
        }
        for (std::size_t i = 0; i < count; ++i) {
          ASSERT_EQ(found[i], isBusy(s, i, unchanged, accountLife))
              << "pixel " << i << " of " << count << ", unchanged " << unchanged;
        }
      }
    }
  }
}

struct Expected {
  bool enough;
  std::uint32_t distance;
};

// The walk over a pixel's samples, slot by slot.
Expected walk(const lm::MatchRule& rule, const std::uint8_t* samples, const std::uint8_t* pixel) {
  std::uint32_t nearest = 999;
  int matches = 0;
  for (int slot = 0; slot < 20; ++slot) {
    int sum = 0;
    bool within = true;
    for (int c = 0; c < std::min(3, rule.channels); ++c) {
      const int d = std::abs(pixel[c] - samples[4 * slot + c]);
      within = within && d <= rule.radius;
      sum += d;
    }
    if (within) {
      ++matches;
      nearest = std::min(nearest, static_cast<std::uint32_t>(sum));
    }
    if ((within || rule.channels == 1) && matches >= rule.needed) return {true, nearest};
  }
  return {false, nearest};
}

TEST_P(ModelKernels, SamplesAreMatchedInOrderUntilEnoughAreFound) {
  Random random;
  for (const std::int32_t channels : {1, 3, 4}) {
    for (const std::int32_t radius : {-1, 0, 7, 20, 254, 255, INT_MAX}) {
      for (const std::int32_t needed : {-1, 0, 1, 2, 3, 9, 20, 21}) {
        const lm::MatchRule rule{channels, radius, needed};
        Plane<std::uint8_t> samples(32 * 80, Against::back);
        Plane<std::uint8_t> pixels(32 * static_cast<std::size_t>(channels), Against::back);
        Plane<std::uint32_t> distances(32, Against::back);
        for (std::size_t i = 0; i < 32 * static_cast<std::size_t>(channels); ++i) {
          pixels[i] = static_cast<std::uint8_t>(random.next());
        }
        for (std::size_t i = 0; i < 32 * 80; ++i) {
          const auto channel = static_cast<std::int32_t>(i % 4);
          const std::size_t pixel = i / 80 * static_cast<std::size_t>(channels);
          const int near = channel < channels ? pixels[pixel + static_cast<std::size_t>(channel)] : 0;
          const int shift = static_cast<int>(random.next() % 49) - 24;
          samples[i] = static_cast<std::uint8_t>(random.next() % 3 == 0 ? random.next()
                                                                        : std::clamp(near + shift, 0, 255));
        }
        const std::uint32_t wanted = random.next() << 8 ^ random.next();
        std::fill_n(distances.data(), 32, 77U);
        const std::uint32_t enough =
            kernels_.matchBlock(rule, samples.data(), pixels.data(), wanted, distances.data());
        for (std::uint32_t k = 0; k < 32; ++k) {
          const Expected expected =
              (wanted >> k & 1U) == 0
                  ? Expected{false, 77}
                  : walk(rule, samples.data() + 80 * std::size_t{k},
                         pixels.data() + std::size_t{k} * static_cast<std::size_t>(channels));
          ASSERT_EQ((enough >> k & 1U) != 0, expected.enough)
              << "pixel " << k << ", " << channels << " channels, radius " << radius << ", needed " << needed;
          ASSERT_EQ(distances[k], expected.distance)
              << "pixel " << k << ", " << channels << " channels, radius " << radius << ", needed " << needed;
        }
      }
    }
  }
}

struct ExpectedUpdate {
  std::vector<char> absorbed, lit, changed;
  std::vector<std::int32_t> timer;
  std::int64_t examined = 0;
};

ExpectedUpdate updateOf(const Scene& s, std::size_t count, const lm::UpdatePlanes& planes) {
  ExpectedUpdate e{std::vector<char>(count), std::vector<char>(count), std::vector<char>(count),
                   std::vector<std::int32_t>(s.timer.data(), s.timer.data() + count)};
  for (std::size_t i = 0; i < count; ++i) {
    if (s.roi[i] == 0) continue;
    e.timer[i] = e.timer[i] == INT_MIN ? INT_MAX : e.timer[i] - 1;
    e.absorbed[i] = planes.absorbing && s.absorbed[i] == 255;
    if (e.absorbed[i] != 0 || s.now[i] != 0) continue;
    if (planes.watchLight) ++e.examined;
    e.lit[i] = planes.watchLight && s.light[i] > planes.sameLight;
    e.changed[i] = s.difference[i] > planes.unchanged || s.before[i] != 0;
  }
  return e;
}

TEST_P(ModelKernels, UpdateWorkIsFoundTimersFallAndBackgroundIsCounted) {
  Random random;
  for (const std::size_t count : counts) {
    for (const std::int32_t threshold : thresholds) {
      for (const int switches : {0, 1, 2, 3}) {
        const Scene s(count, count % 2 == 0 ? Against::front : Against::back, random);
        const lm::UpdatePlanes planes{
            s.roi.data(),        s.difference.data(), s.before.data(),
            s.now.data(),        s.absorbed.data(),   s.light.data(),
            s.timer.data(),      threshold,           thresholds[random.next() % std::size(thresholds)],
            (switches & 1) != 0, (switches & 2) != 0};
        const ExpectedUpdate expected = updateOf(s, count, planes);
        ExpectedUpdate found{
            std::vector<char>(count), std::vector<char>(count), std::vector<char>(count), {}};
        for (std::size_t from = 0; from < count;) {
          lm::UpdateWork work{};
          const std::size_t at = kernels_.nextUpdateBlock(planes, from, count, work, found.examined);
          for (std::size_t k = 0; k < 32 && at + k < count; ++k) {
            found.absorbed[at + k] = static_cast<char>(work.absorbed >> k & 1U);
            found.lit[at + k] = static_cast<char>(work.lit >> k & 1U);
            found.changed[at + k] = static_cast<char>(work.changed >> k & 1U);
          }
          from = at + 32;
        }
        ASSERT_EQ(found.absorbed, expected.absorbed);
        ASSERT_EQ(found.lit, expected.lit);
        ASSERT_EQ(found.changed, expected.changed);
        ASSERT_EQ(std::vector<std::int32_t>(s.timer.data(), s.timer.data() + count), expected.timer);
        ASSERT_EQ(found.examined, expected.examined);
        ASSERT_EQ(s.timer.damage(), "");
      }
    }
  }
}

}  // namespace
