// The 5 x 5 neighbour table with its random replacements, and the four direct neighbours.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <set>

#include "tests/support/engine_fixture.h"

namespace lm::test {
namespace {

std::vector<int> neighboursOf(const kAMBLE& engine, std::size_t pixel) {
  return {engine.nbrIdx[pixel], engine.nbrIdx[pixel] + 25};
}

TEST(NeighbourOffsets, AreListedColumnByColumn) {
  const SizedEngine engine(3, 3, 1);
  ASSERT_EQ(engine.nbrOffset.size(), 25U);
  std::size_t k = 0;
  for (int dx = -2; dx <= 2; ++dx) {
    for (int dy = -2; dy <= 2; ++dy, ++k) {
      EXPECT_EQ(engine.nbrOffset[k].x, dx) << "offset " << k;
      EXPECT_EQ(engine.nbrOffset[k].y, dy) << "offset " << k;
    }
  }
}

TEST(NeighbourTable, InteriorPixelListsItsBlockColumnByColumn) {
  const SizedEngine engine(5, 5, 1);
  EXPECT_EQ(neighboursOf(engine, 12), (std::vector<int>{0, 5, 10, 15, 20,  // column 0, rows 0 to 4
                                                        1, 6, 11, 16, 21,  //
                                                        2, 7, 12, 17, 22,  //
                                                        3, 8, 13, 18, 23,  //
                                                        4, 9, 14, 19, 24}));
}

TEST(NeighbourTable, CornerPixelFillsSixteenEntriesFromItsNineInsideTheFrame) {
  const SizedEngine engine(4, 4, 1);
  const std::vector<int> entries = neighboursOf(engine, 0);
  // dx = 0 starts at entry 10, dy = 0 is its third: inside are 12, 13, 14, 17, 18, 19, 22, 23, 24.
  const std::vector<std::pair<std::size_t, int>> inside = {{12, 0}, {13, 4}, {14, 8}, {17, 1}, {18, 5},
                                                           {19, 9}, {22, 2}, {23, 6}, {24, 10}};
  std::set<int> allowed;
  for (const auto& [entry, pixel] : inside) {
    EXPECT_EQ(entries[entry], pixel) << "entry " << entry;
    allowed.insert(pixel);
  }
  for (const int entry : entries) {
    EXPECT_TRUE(allowed.contains(entry)) << entry;
  }
}

TEST(NeighbourTable, HasNoEntryOutsideTheFrameAtAnySize) {
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {9, 1}, {2, 3}, {6, 5}}) {
    const SizedEngine engine(width, height, 1);
    for (std::size_t i = 0; i < engine.pixels(); ++i) {
      for (const int entry : neighboursOf(engine, i)) {
        EXPECT_TRUE(entry >= 0 && entry < engine.numPixel) << width << "x" << height << " pixel " << i;
      }
    }
  }
}

TEST(NeighbourTable, OnePixelFrameIsItsOwnNeighbourEverywhere) {
  const SizedEngine engine(1, 1, 1);
  EXPECT_EQ(neighboursOf(engine, 0), std::vector<int>(25, 0));
}

// Computes a pixel's entries again, drawing the missing ones from rand() in the same order.
std::vector<int> replayed(int width, int height, int x, int y) {
  std::vector<int> entries;
  for (int dx = -2; dx <= 2; ++dx) {
    for (int dy = -2; dy <= 2; ++dy) {
      const bool inside = x + dx >= 0 && x + dx < width && y + dy >= 0 && y + dy < height;
      entries.push_back(inside ? (y + dy) * width + x + dx : -1);
    }
  }
  for (int& entry : entries) {
    while (entry == -1) {
      entry = entries[static_cast<std::size_t>(std::rand() % 25)];
    }
  }
  return entries;
}

TEST(NeighbourTable, DrawsReplacementsFromRandPixelByPixelUntilOneIsInside) {
  std::srand(20240229);
  const SizedEngine engine(6, 4, 1);
  std::srand(20240229);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 6; ++x) {
      EXPECT_EQ(neighboursOf(engine, static_cast<std::size_t>(y * 6 + x)), replayed(6, 4, x, y))
          << "pixel (" << x << ", " << y << ")";
    }
  }
}

TEST(NeighbourTable, GeneratorIsNeverSeeded) {
  std::srand(1);
  const int first = std::rand();
  const SizedEngine engine(3, 3, 1);
  std::srand(1);
  std::rand();
  for (int i = 0; i < 9; ++i) {
    replayed(3, 3, i % 3, i / 3);
  }
  const int afterReplay = std::rand();
  std::srand(1);
  ASSERT_EQ(std::rand(), first);
  const SizedEngine second(3, 3, 1);
  EXPECT_EQ(std::rand(), afterReplay) << "the set-up takes exactly the table's draws";
}

std::array<int, 4> directOf(const kAMBLE& engine, std::size_t pixel) {
  const int128_t& record = engine.nbr4Idx.at(pixel);
  return {record.up, record.right, record.down, record.left};
}

TEST(DirectNeighbours, FirstAndLastPixelHaveTwoEach) {
  const SizedEngine engine(5, 4, 1);
  EXPECT_EQ(directOf(engine, 0), (std::array{-1, 1, 5, -1}));
  EXPECT_EQ(directOf(engine, 19), (std::array{14, -1, -1, 18}));
}

TEST(DirectNeighbours, InteriorPixelHasAllFour) {
  const SizedEngine engine(5, 4, 1);
  EXPECT_EQ(directOf(engine, 7), (std::array{2, 8, 12, 6}));
}

TEST(DirectNeighbours, RowEndsAreNotConnectedToTheNextRow) {
  const SizedEngine engine(5, 4, 1);
  EXPECT_EQ(directOf(engine, 9), (std::array{4, -1, 14, 8}));
  EXPECT_EQ(directOf(engine, 10), (std::array{5, 11, 15, -1}));
}

TEST(DirectNeighbours, OnePixelFrameHasNone) {
  const SizedEngine engine(1, 1, 1);
  EXPECT_EQ(directOf(engine, 0), (std::array{-1, -1, -1, -1}));
}

TEST(DirectNeighbours, RecordsEndInZeros) {
  const SizedEngine engine(5, 4, 1);
  for (const int128_t& record : engine.nbr4Idx) {
    EXPECT_TRUE(
        std::all_of(std::begin(record.zero), std::end(record.zero), [](int byte) { return byte == 0; }));
  }
}

}  // namespace
}  // namespace lm::test
