// The list-based erosion against a plain one, on frame widths around multiples of the word size, with any
// values.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "engine/engine_state.h"
#include "tests/objects/speckle.h"
#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

struct Erosion {
  std::uint8_t set, cleared;
  int passes;
};
void PrintTo(const Erosion& erosion, std::ostream* out) {
  *out << int{erosion.set} << " into " << int{erosion.cleared} << ", " << erosion.passes << " passes";
}

struct Eroded {
  Bytes mask;
  std::vector<int> last;  // what the last pass cleared
};

// Pass by pass, pixel by pixel. On these masks at most 100 passes matter: after them every pass lists
// nothing, or the same pixels as the pass before.
Eroded eroded(Bytes mask, int width, const Erosion& erosion) {
  const int count = static_cast<int>(mask.size());
  const auto isCleared = [&](int pixel) { return mask[static_cast<std::size_t>(pixel)] == erosion.cleared; };
  std::vector<int> list;
  for (int pass = 0; pass < std::min(erosion.passes, 100); ++pass) {
    list.clear();
    for (int pixel = 0; pixel < count; ++pixel) {
      if (mask[static_cast<std::size_t>(pixel)] != erosion.set) continue;
      const bool borders = (pixel % width > 0 && isCleared(pixel - 1)) ||
                           (pixel % width < width - 1 && isCleared(pixel + 1)) ||
                           (pixel >= width && isCleared(pixel - width)) ||
                           (pixel + width < count && isCleared(pixel + width));
      if (borders) list.push_back(pixel);
    }
    for (const int pixel : list) mask[static_cast<std::size_t>(pixel)] = erosion.cleared;
  }
  return {mask, list};
}

class ErosionOnWords : public ::testing::TestWithParam<int> {
 protected:
  void expectPlain(SizedEngine& engine, const Bytes& mask, const Erosion& erosion) {
    const Eroded expected = eroded(mask, engine.szImgX, erosion);
    std::uint8_t* plane = nullptr;
    put(plane, mask);
    engine.erode_ncv_fast(plane, erosion.set, erosion.cleared, erosion.passes);
    EXPECT_EQ(engine.drawn(plane), drawing(expected.mask, engine.szImgX))
        << ::testing::PrintToString(erosion);
    EXPECT_EQ(engine.morphList, expected.last) << ::testing::PrintToString(erosion);
    std::free(plane);
  }
};
INSTANTIATE_TEST_SUITE_P(Width, ErosionOnWords, ::testing::ValuesIn(wordWidths),
                         ::testing::PrintToStringParamName());

const Erosion erosions[] = {{1, 0, 1},   {1, 0, 2},     {1, 0, 3}, {1, 0, 5},       {255, 0, 3},
                            {0, 255, 2}, {255, 254, 3}, {9, 9, 1}, {1, 0, INT_MAX}, {9, 9, INT_MAX}};

TEST_P(ErosionOnWords, SpeckledRegionsMatchPlainErosion) {
  SizedEngine engine(GetParam(), 23, 1);
  Speckle speckle(7);
  for (const Erosion& erosion : erosions) {
    for (const unsigned every : {2U, 9U, 60U, 400U}) {
      const std::uint8_t gap = erosion.cleared;
      expectPlain(engine, speckle.mask(engine.pixels(), erosion.set, every, {gap}), erosion);
      expectPlain(engine, speckle.mask(engine.pixels(), erosion.set, every, {gap, gap, 77}), erosion);
    }
  }
}

TEST_P(ErosionOnWords, SpeckledBackgroundMatchesPlainErosion) {
  SizedEngine engine(GetParam(), 23, 1);
  Speckle speckle(8);
  for (const Erosion& erosion : erosions) {
    for (const unsigned every : {2U, 9U, 60U, 400U}) {
      const std::vector<std::uint8_t> marks = {erosion.set, 77};
      expectPlain(engine, speckle.mask(engine.pixels(), erosion.cleared, every, marks), erosion);
    }
  }
}

TEST_P(ErosionOnWords, LayersCrossWordBoundaries) {
  SizedEngine engine(GetParam(), 9, 1);
  // One cleared pixel at a time, all others set: a diamond grows around it, up to the frame's edge.
  for (int column = 0; column < GetParam(); ++column) {
    Bytes mask(engine.pixels(), 1);
    mask[static_cast<std::size_t>(4 * GetParam() + column)] = 0;
    expectPlain(engine, mask, {1, 0, 3});
  }
}

TEST(ErosionShapes, EngineSizedAgainForgetsTheFormerShape) {
  SizedEngine wide(130, 9, 1);
  Bytes mask(130 * 9, 1);
  wide.erode_ncv_fast(mask.data(), 1, 0, 3);
  wide.destoryBuffer();
  wide.szImgX = 65;  // the same number of pixels, in rows half as wide
  wide.szImgY = 18;
  wide.initBuffer_ncv();
  mask.assign(130 * 9, 1);
  mask[65 * 5 + 64] = 0;
  const Eroded expected = eroded(mask, 65, {1, 0, 3});
  wide.erode_ncv_fast(mask.data(), 1, 0, 3);
  EXPECT_EQ(drawing(mask, 65), drawing(expected.mask, 65));
}

// 3 rows of 5 pixels and one of 2, as in a frame whose pixel count is not width times height.
TEST(ErosionShapes, LastRowMayBeShort) {
  SizedEngine engine(17, 1, 1);
  stateOf(engine).nbrWidth = 5;
  Bytes mask(17, 1);
  mask[16] = 0;
  engine.erode_ncv_fast(mask.data(), 1, 0, 1);
  EXPECT_EQ(drawing(mask, 5), picture({"11111", "11111", "1.111", ".."}));
  EXPECT_EQ(engine.morphList, (std::vector<int>{11, 15}));
}

}  // namespace
}  // namespace lm::test
