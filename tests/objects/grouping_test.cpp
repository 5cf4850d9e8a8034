// From pieces to objects. The frame's longer side is 640 pixels unless a test says otherwise, and they
// need not fill anything: 80 pixels are 1/8 of it and 20 are 1/32.
#include "objects/grouping.h"

#include <gtest/gtest.h>

#include <ostream>

#include "tests/support/by_name.h"

namespace lm {

bool operator==(const Piece& a, const Piece& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom &&
         a.strong == b.strong && a.covered == b.covered;
}

void PrintTo(const Piece& piece, std::ostream* out) {
  *out << piece.left << ".." << piece.right << " x " << piece.top << ".." << piece.bottom
       << (piece.strong ? "" : " weak") << ", " << piece.covered;
}

namespace test {
namespace {

constexpr GroupRule side{640, 0};
using Pieces = std::vector<Piece>;

Piece strong(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
  return pieceOf(x, y, x + width, y + height, true);
}

Piece weak(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
  return pieceOf(x, y, x + width, y + height, false);
}

Piece joined(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height, std::int64_t covered) {
  Piece piece = strong(x, y, width, height);
  piece.covered = covered;
  return piece;
}

// Either way round.
bool together(const Piece& a, const Piece& b, const GroupRule& rule = side) {
  const bool answer = belongTogether(a, b, rule);
  EXPECT_EQ(belongTogether(b, a, rule), answer);
  return answer;
}

// A piece of 20 x 30 at columns 100 to 119, and others around it.
const Piece body = strong(100, 200, 20, 30);

TEST(Grouping, TwoPixelsApartTouch) {
  EXPECT_TRUE(together(body, strong(122, 200, 20, 30)));
  EXPECT_FALSE(together(body, strong(123, 200, 20, 30)));
  EXPECT_TRUE(together(body, strong(122, 232, 20, 30))) << "also across a corner";
  EXPECT_FALSE(together(body, strong(122, 233, 20, 30)));
  EXPECT_FALSE(together(body, strong(123, 232, 20, 30)));
  EXPECT_TRUE(together(body, strong(105, 210, 5, 5))) << "inside";
}

// The gap reaches twice the wider one's width: 40 pixels.
TEST(Grouping, PiecesAboveEachOtherAreOne) {
  EXPECT_TRUE(together(body, strong(100, 270, 20, 30)));
  EXPECT_FALSE(together(body, strong(100, 271, 20, 30)));
  EXPECT_TRUE(together(body, strong(105, 140, 10, 20))) << "a head, 40 pixels above";
  EXPECT_FALSE(together(body, strong(105, 139, 10, 20)));
  EXPECT_TRUE(together(body, strong(90, 300, 40, 30))) << "the wider one counts";
}

// A car of 120 x 80 is not wide enough, one of 121 x 80 is. Half of the narrower one are 10 pixels.
TEST(Grouping, PeopleBehindVehiclesStayApart) {
  EXPECT_TRUE(together(body, strong(60, 241, 120, 80)));
  EXPECT_FALSE(together(body, strong(60, 241, 121, 80)));
  EXPECT_TRUE(together(body, strong(60, 240, 121, 80)));
}

TEST(Grouping, PiecesAboveEachOtherShareHalfOfTheNarrowerOne) {
  EXPECT_TRUE(together(body, strong(115, 240, 10, 30)));
  EXPECT_FALSE(together(body, strong(116, 240, 10, 30)));
  EXPECT_TRUE(together(body, strong(95, 240, 10, 30)));
  EXPECT_FALSE(together(body, strong(94, 240, 10, 30)));
}

// Twice 100 would be 200.
TEST(Grouping, NoGapIsLargerThanAnEighthOfTheFrame) {
  const Piece lorry = strong(100, 100, 100, 80);
  EXPECT_TRUE(together(lorry, strong(100, 260, 100, 80)));
  EXPECT_FALSE(together(lorry, strong(100, 261, 100, 80)));
  EXPECT_TRUE(together(lorry, strong(100, 261, 100, 80), {648, 0}));
}

TEST(Grouping, PeopleSideBySideAreTwo) { EXPECT_FALSE(together(body, strong(124, 200, 20, 30))); }

// A quarter of 20 x 30 are 150 pixels.
TEST(Grouping, WhatIsSmallBelongsToWhatIsBesideIt) {
  EXPECT_TRUE(together(body, strong(125, 205, 10, 15)));
  EXPECT_FALSE(together(body, strong(125, 205, 10, 16)));
  EXPECT_TRUE(together(body, weak(125, 205, 10, 16)));
}

TEST(Grouping, WhatIsBesideIsAtMostItsOwnWidthAway) {
  EXPECT_TRUE(together(body, strong(130, 205, 10, 15)));
  EXPECT_FALSE(together(body, strong(131, 205, 10, 15)));
}

TEST(Grouping, WhatIsBesideSharesHalfOfTheLowerOne) {
  EXPECT_TRUE(together(body, strong(125, 225, 10, 10)));
  EXPECT_FALSE(together(body, strong(125, 226, 10, 10)));
}

TEST(Grouping, WhatIsBesideIsAtMostA32ndOfTheFrameAway) {
  const Piece bus = strong(100, 100, 200, 100);
  EXPECT_TRUE(together(bus, strong(320, 120, 50, 50)));
  EXPECT_FALSE(together(bus, strong(321, 120, 50, 50)));
}

// A speck of 4 x 6 reaches 6 pixels; a strong piece of the same size would reach 40.
TEST(Grouping, SpecksReachAsFarAsTheirLongerSide) {
  EXPECT_TRUE(together(body, weak(110, 236, 4, 6)));
  EXPECT_FALSE(together(body, weak(110, 237, 4, 6)));
  EXPECT_TRUE(together(body, strong(110, 237, 4, 6)));
}

// Two bodies with a gap of 10: 1200 of 1400 pixels, which is 0.857. With a small one, 650 of 900: 0.722.
TEST(Grouping, WhatIsTogetherIsFilledEnough) {
  const Piece legs = strong(100, 240, 20, 30);
  EXPECT_TRUE(together(body, legs, {640, 0.428}));
  EXPECT_FALSE(together(body, legs, {640, 0.429})) << "twice as much";
  const Piece foot = strong(100, 240, 10, 5);
  EXPECT_TRUE(together(body, foot, {640, 0.722}));
  EXPECT_FALSE(together(body, foot, {640, 0.723}));
  EXPECT_TRUE(together(body, strong(120, 230, 20, 30), {640, 0.25})) << "corners that touch: 1200 of 2400";
  EXPECT_FALSE(together(body, strong(120, 230, 20, 30), {640, 0.26}));
}

// ---- objects ----------------------------------------------------------------------------------------------

TEST(Grouped, EnclosesThePiecesOfAnObject) {
  EXPECT_EQ(grouped({strong(105, 150, 10, 20), body}, side), Pieces{joined(100, 150, 20, 80, 200 + 600)});
}

TEST(Grouped, LeavesOutWeakPiecesAlone) {
  EXPECT_EQ(grouped({weak(10, 10, 8, 8), weak(12, 20, 8, 8), body}, side), Pieces{body});
  EXPECT_EQ(grouped({weak(10, 10, 8, 8)}, side), Pieces{});
  EXPECT_EQ(grouped({}, side), Pieces{});
}

// Each speck is within reach of what the object is after the one before: 230 + 6 + 6 + 6 + 6.
TEST(Grouped, GrowsFromSpeckToSpeck) {
  EXPECT_EQ(grouped({body, weak(105, 248, 6, 6), weak(105, 236, 6, 6)}, side),
            Pieces{joined(100, 200, 20, 54, 600 + 36 + 36)});
}

// The legs are 41 pixels away, which the speck makes 31.
TEST(Grouped, SpecksBridgeGaps) {
  const Piece legs = strong(100, 271, 20, 30);
  EXPECT_EQ(grouped({body, legs}, side), (Pieces{body, legs}));
  EXPECT_EQ(grouped({body, weak(105, 234, 6, 6), legs}, side),
            Pieces{joined(100, 200, 20, 101, 600 + 36 + 600)});
}

// The first two are one after the third has joined the second.
TEST(Grouped, JoinsUntilNothingBelongsTogether) {
  const Piece arm = strong(131, 200, 8, 12);
  EXPECT_EQ(grouped({body, arm, strong(122, 205, 10, 15)}, side),
            Pieces{joined(100, 200, 39, 30, 600 + 96 + 150)});
}

// The third car is as near to the second as that to the first, but the three fill too little.
TEST(Grouped, EndsWhereTooLittleIsFilled) {
  const Piece first = strong(100, 100, 40, 40), second = strong(110, 180, 40, 40),
              third = strong(130, 260, 40, 40);
  EXPECT_EQ(grouped({first, second}, {640, 0.25}), Pieces{joined(100, 100, 50, 120, 3200)});
  EXPECT_EQ(grouped({first, second, third}, {640, 0.25}).size(), 2U);
  EXPECT_EQ(grouped({first, second, third}, side).size(), 1U);
}

TEST(Grouped, LeavesMorePiecesThanCanBeComparedAsTheyAre) {
  Pieces all{body, weak(105, 236, 6, 6)};
  while (all.size() < mostPieces) all.push_back(weak(400, 400, 4, 4));
  EXPECT_EQ(grouped(all, side), Pieces{joined(100, 200, 20, 42, 600 + 36)});
  all.push_back(weak(400, 400, 4, 4));
  EXPECT_EQ(grouped(all, side), Pieces{body});
}

TEST(Grouped, KeepsTheOrderOfThePieces) {
  const Piece other = strong(300, 100, 20, 30);
  EXPECT_EQ(grouped({other, body, weak(105, 236, 6, 6)}, side),
            (Pieces{other, joined(100, 200, 20, 42, 600 + 36)}));
}

}  // namespace
}  // namespace test
}  // namespace lm
