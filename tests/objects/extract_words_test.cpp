// The state after extraction, compared with plain operations, over successive frames.
#include <gtest/gtest.h>

#include <algorithm>

#include "objects/component.h"
#include "simd/simd.h"
#include "tests/objects/speckle.h"
#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

using Labels = std::vector<std::uint32_t>;

// The result for one frame of the operations of extraction, called one by one.
struct FinalState {
  Bytes mask;
  std::vector<int> last;
  Labels labels;
};

void flood(Labels& labels, int width, int pixel, std::uint32_t label) {
  std::vector<int> open = {pixel};
  const int count = static_cast<int>(labels.size());
  while (!open.empty()) {
    const int at = open.back();
    open.pop_back();
    if (labels[static_cast<std::size_t>(at)] != 1) continue;
    labels[static_cast<std::size_t>(at)] = label;
    if (at >= width) open.push_back(at - width);
    if (at + width < count) open.push_back(at + width);
    if (at % width > 0) open.push_back(at - 1);
    if (at % width < width - 1) open.push_back(at + 1);
  }
}

FinalState expectedState(const SizedEngine& engine, const Bytes& frame) {
  const int width = engine.szImgX;
  SizedEngine fresh(width, engine.szImgY, 1);
  FinalState state{frame, {}, {}};
  std::replace(state.mask.begin(), state.mask.end(), 255, 1);
  fresh.erode_ncv_fast(state.mask.data(), 1, 0, 3);
  state.last = fresh.morphList;
  simd::pruneFgByRoi(state.mask.data(), engine.roiMask, engine.numPixel);
  state.labels.assign(state.mask.begin(), state.mask.end());
  std::uint32_t next = 2;
  for (int pixel = 0; pixel < engine.numPixel; ++pixel) {
    if (state.labels[static_cast<std::size_t>(pixel)] == 1) flood(state.labels, width, pixel, next++);
  }
  return state;
}

struct Extraction : SizedEngine {
  Extraction(int width, int height) : SizedEngine(width, height, 1) { put(mask, Bytes(pixels())); }
  ~Extraction() { std::free(mask); }
  Extraction(const Extraction&) = delete;
  Extraction& operator=(const Extraction&) = delete;

  void expectState(const Bytes& frame) {
    const FinalState expected = expectedState(*this, frame);
    std::copy(frame.begin(), frame.end(), mask);
    genFgObj_ncv(mask);
    ASSERT_EQ(drawn(mask), drawing(expected.mask, szImgX));
    ASSERT_EQ(morphList, expected.last);
    ASSERT_EQ(drawing(labelMap, pixels(), szImgX), drawing(expected.labels, szImgX));
    Labels rows;
    for (int y = 0; y < szImgY; ++y) rows.insert(rows.end(), labelRows[y], labelRows[y] + szImgX);
    ASSERT_EQ(rows, expected.labels);
  }

  std::uint8_t* mask = nullptr;
};

class ExtractionOnWords : public ::testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Width, ExtractionOnWords, ::testing::ValuesIn(wordWidths),
                         ::testing::PrintToStringParamName());

TEST_P(ExtractionOnWords, EveryFrameMatchesPlainOperations) {
  Extraction engine(GetParam(), 37);
  Speckle speckle(11);
  const std::size_t pixels = engine.pixels();
  for (int round = 0; round < 4; ++round) {
    for (const unsigned every : {30U, 150U, 1000U}) {
      engine.expectState(speckle.mask(pixels, 255, every, {0}));
      engine.expectState(speckle.mask(pixels, 255, every, {0, 7}));
      engine.expectState(speckle.mask(pixels, 0, every, {7, 255, 1}));
    }
    engine.expectState(Bytes(pixels, 0));
    engine.expectState(speckle.mask(pixels, 7, 40, {0, 1, 255, 254}));
    engine.expectState(Bytes(pixels, 255));
  }
}

TEST_P(ExtractionOnWords, PrunedPixelsAreInNoLabelMap) {
  Extraction engine(GetParam(), 37);
  for (std::size_t i = 0; i < engine.pixels(); i += 3) engine.roiMask[i] = 0;
  Speckle speckle(12);
  for (int round = 0; round < 4; ++round) {
    engine.expectState(Bytes(engine.pixels(), 255));
    engine.expectState(speckle.mask(engine.pixels(), 255, 200, {0, 7}));
    engine.expectState(Bytes(engine.pixels(), 7));
    engine.expectState(Bytes(engine.pixels(), 0));
  }
}

// A square moves; the labels it leaves must be cleared, block by block.
TEST_P(ExtractionOnWords, MovingRegionLeavesNoOldLabels) {
  Extraction engine(GetParam(), 37);
  for (int step = 0; step + 8 <= GetParam(); step += 7) {
    Bytes frame(engine.pixels(), 0);
    for (int y = 14; y < 23; ++y) std::fill_n(frame.begin() + y * GetParam() + step, 8, std::uint8_t{255});
    engine.expectState(frame);
  }
  engine.expectState(Bytes(engine.pixels(), 0));
}

TEST(ExtractionBuffers, LabelMapReplacedByTheCallerIsWrittenCompletely) {
  Extraction engine(130, 37);
  engine.expectState(Bytes(engine.pixels(), 0));
  std::uint32_t* const former = engine.labelMap;  // freed late, so that the new one has another address
  engine.labelMap = makePlane<std::uint32_t>(engine.pixels(), 99);
  engine.expectState(Bytes(engine.pixels(), 0));
  std::free(former);
}

TEST(ExtractionBuffers, LabelMapChangedByAnotherOperationIsWrittenCompletely) {
  Extraction engine(130, 37);
  engine.expectState(Bytes(engine.pixels(), 0));
  engine.connectedComponent(engine.labelMap, 0);
  ASSERT_EQ(engine.labelMap[0], 2U);
  engine.expectState(Bytes(engine.pixels(), 0));
}

TEST(ExtractionBuffers, ReleasedPlanesAreMadeAgain) {
  Extraction engine(130, 37);
  engine.expectState(Bytes(engine.pixels(), 255));
  std::free(engine.labelMap);
  engine.labelMap = nullptr;
  engine.expectState(Bytes(engine.pixels(), 0));
  engine.expectState(Bytes(engine.pixels(), 255));
}

}  // namespace
}  // namespace lm::test
