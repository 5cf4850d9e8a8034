// The compact engine gives what the open one gives, over all sequences that a host can feed through the entry
// points: one channel count, and no changes to fields in between.
#include <gtest/gtest.h>

#include "simd/cpu_level.h"
#include "tests/compact/pair.h"
#include "tests/system/scripted_clock.h"
#include "tests/system/sequence.h"

namespace {

std::vector<polygon> polygonsOf(const Sequence& sequence, const std::vector<plain::RegionText>& texts,
                                std::size_t fewest) {
  plain::Model model(simd::level::avx2);
  std::vector<polygon> polygons;
  for (const plain::Region& region : model.regionsInPixels(texts, sequence.width, sequence.height, fewest)) {
    polygon copy;
    copy.name = region.name;
    for (const plain::Vertex& vertex : region.points) copy.points.push_back({vertex.x, vertex.y});
    polygons.push_back(copy);
  }
  return polygons;
}

// What differs first; "" also where the sequence is none that the compact engine takes. `compared`: whether
// it is one.
std::string compareOver(const Sequence& sequence, int level, bool& compared) {
  compared = false;
  if (sequence.before) return "";
  const Frame first = sequence.frame(0);
  const lm::compact::Shape shape{sequence.width, sequence.height, first.channels};
  std::vector<std::string> entries = {"frmW " + std::to_string(sequence.width),
                                      "frmH " + std::to_string(sequence.height),
                                      "frmChn " + std::to_string(first.channels)};
  entries.insert(entries.end(), sequence.entries.begin(), sequence.entries.end());
  Pair pair(shape, entries, polygonsOf(sequence, sequence.include, 3),
            polygonsOf(sequence, sequence.exclude, 0), level);
  if (!pair.suits()) return "";
  for (int k = 0; k < sequence.frames; ++k) {
    const Frame frame = k == 0 ? first : sequence.frame(k);
    if (frame.channels != shape.channels) return "";
    if (sequence.clock) setScriptedTime(sequence.clock(k));
    const std::string difference = pair.feed(frame.pixels, frame.timestamp);
    if (!difference.empty()) return sequence.name + ", frame " + std::to_string(k) + ": " + difference;
  }
  compared = true;
  return "";
}

TEST(CompactEngine, GivesWhatTheOpenEngineGivesOverAllSequences) {
  std::size_t sequences = 0;
  for (const Sequence& sequence : allSequences()) {
    for (const int level : levels()) {
      bool compared = false;
      EXPECT_EQ(compareOver(sequence, level, compared), "") << "level " << level;
      sequences += compared ? 1 : 0;
    }
  }
  EXPECT_GT(sequences, levels().size() * 100);
}

}  // namespace
