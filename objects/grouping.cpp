#include "objects/grouping.h"

#include <algorithm>

namespace lm {
namespace {

constexpr std::int32_t touching = 2;  // pixels

std::int32_t width(const Piece& piece) { return piece.right - piece.left; }
std::int32_t height(const Piece& piece) { return piece.bottom - piece.top; }
std::int64_t area(const Piece& piece) { return std::int64_t{width(piece)} * height(piece); }

Piece around(const Piece& a, const Piece& b) {
  return {std::min(a.left, b.left),     std::min(a.top, b.top), std::max(a.right, b.right),
          std::max(a.bottom, b.bottom), a.strong || b.strong,   a.covered + b.covered};
}

// Two spans on an axis: what they share, negative for a gap, and the longer and the shorter length.
struct Axis {
  std::int32_t shared, longer, shorter;

  Axis(std::int32_t beginA, std::int32_t endA, std::int32_t beginB, std::int32_t endB)
      : shared(std::min(endA, endB) - std::max(beginA, beginB)),
        longer(std::max(endA - beginA, endB - beginB)),
        shorter(std::min(endA - beginA, endB - beginB)) {}

  std::int32_t gap() const { return std::max(0, -shared); }
  bool isShared() const { return 2 * shared >= shorter; }
};

bool areNear(const Piece& a, const Piece& b, bool small, std::int32_t longerSide) {
  const Axis across(a.left, a.right, b.left, b.right);
  const Axis down(a.top, a.bottom, b.top, b.bottom);
  const std::int32_t gap = std::max(across.gap(), down.gap());
  if (gap <= touching) return true;
  const Piece& speck = a.strong ? b : a;
  if (!speck.strong && gap > std::max(width(speck), height(speck))) return false;
  if (across.isShared()) {
    const Piece& wider = width(a) >= width(b) ? a : b;
    const bool lying = 2 * width(wider) > 3 * height(wider);
    return (lying ? 2 * gap <= across.shorter : gap <= 2 * across.longer) && 8 * gap <= longerSide;
  }
  return small && down.isShared() && gap <= across.shorter && 32 * gap <= longerSide;
}

// The first piece in [first, end) that belongs to the one at `place`; `end` if there is none.
std::size_t partnerOf(const std::vector<Piece>& strong, std::size_t place, std::size_t first, std::size_t end,
                      const GroupRule& rule) {
  while (first < end &&
         !belongTogether(strong[std::min(place, first)], strong[std::max(place, first)], rule)) {
    ++first;
  }
  return first;
}

// Joins the strong pieces that belong together, until none do: always the first one that has a partner with
// the first of its partners.
void joinStrong(std::vector<Piece>& strong, const GroupRule& rule) {
  bool grown = false;  // so that one before it may have become its partner
  for (std::size_t i = 0; i < strong.size();) {
    const std::size_t before = grown ? partnerOf(strong, i, 0, i, rule) : i;
    const std::size_t partner = before < i ? before : partnerOf(strong, i, i + 1, strong.size(), rule);
    grown = partner < strong.size();
    if (!grown) {
      ++i;
      continue;
    }
    const auto [kept, taken] = std::minmax(i, partner);
    strong[kept] = around(strong[kept], strong[taken]);
    strong.erase(strong.begin() + static_cast<std::ptrdiff_t>(taken));
    i = kept;
  }
}

// Gives weak pieces to the first strong one each belongs to; returns whether there was any.
bool takeWeak(std::vector<Piece>& strong, std::vector<Piece>& weak, const GroupRule& rule) {
  const std::size_t before = weak.size();
  std::erase_if(weak, [&](const Piece& piece) {
    const auto owner = std::find_if(strong.begin(), strong.end(), [&](const Piece& candidate) {
      return belongTogether(candidate, piece, rule);
    });
    if (owner == strong.end()) return false;
    *owner = around(*owner, piece);
    return true;
  });
  return weak.size() < before;
}

}  // namespace

Piece pieceOf(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom, bool strong) {
  return {left, top, right, bottom, strong, std::int64_t{right - left} * (bottom - top)};
}

bool belongTogether(const Piece& a, const Piece& b, const GroupRule& rule) {
  const bool small = !a.strong || !b.strong || 4 * std::min(area(a), area(b)) <= std::max(area(a), area(b));
  if (!areNear(a, b, small, rule.longerSide)) return false;
  const Piece both = around(a, b);
  const double least = small ? rule.fill : 2 * rule.fill;
  return static_cast<double>(both.covered) >= least * static_cast<double>(area(both));
}

std::vector<Piece> grouped(const std::vector<Piece>& pieces, const GroupRule& rule) {
  std::vector<Piece> strong, weak;
  for (const Piece& piece : pieces) (piece.strong ? strong : weak).push_back(piece);
  if (pieces.size() > mostPieces) return strong;
  do {
    joinStrong(strong, rule);
  } while (takeWeak(strong, weak, rule));
  return strong;
}

}  // namespace lm
