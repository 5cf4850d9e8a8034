// From the pieces of the foreground to objects. Where an object has the colour of what is behind it, its
// foreground falls into pieces: a head, legs, specks between them. Which of them belong together depends on
// their sizes and on how they lie to each other, so that people in a group and cars in a queue stay apart.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lm {

// Columns [left, right) and rows [top, bottom). `strong`: enough of it survives peeling for a box of its own.
// `covered`: the sum of the areas of the boxes of its components.
struct Piece {
  std::int32_t left, top, right, bottom;
  bool strong;
  std::int64_t covered;
};

Piece pieceOf(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom, bool strong);

// `fill`: the least share of a joined box that its components' boxes cover, twice as much if neither
// piece is small. Without it, one thing after the other is joined where many are near each other.
struct GroupRule {
  std::int32_t longerSide;  // of the frame
  double fill;
};

// Whether two pieces belong to one object: together they are filled enough, and either
// - they touch, or are at most 2 pixels apart, or
// - one is above the other: they share at least half of the narrower one's width, and the gap is at most
//   twice the wider one's width and 1/8 of the longer side; if the wider one is more than 1.5 times as wide
//   as high, as vehicles are with people behind them, at most half of the narrower one's width. Or
// - a small one is beside a large one: they share at least half of the lower one's height, and the gap is at
//   most the narrower one's width and 1/32 of the longer side. Small is what is weak, and what has at most a
//   quarter of the other's area.
// The gap of a weak piece is at most its own longer side.
bool belongTogether(const Piece& a, const Piece& b, const GroupRule& rule);

// Every pair of pieces may have to be compared: a frame with more of them, which shows a storm or noise
// rather than objects, would take too long.
constexpr std::size_t mostPieces = 2000;

// The objects: strong pieces, which take in what belongs to them until nothing more does. Weak pieces that
// belong to none are left out. Of more than `mostPieces`, each strong one is an object.
std::vector<Piece> grouped(const std::vector<Piece>& pieces, const GroupRule& rule);

}  // namespace lm
