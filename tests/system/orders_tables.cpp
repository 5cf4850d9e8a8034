// Writes to the neighbour tables and to the label planes.
#include "tests/support/engine_fixture.h"
#include "tests/system/orders.h"

namespace orders {
namespace {

bool withTables(const Pair& pair) {
  return pair.hasEngine() && pair.hasTables() && pair.model().nbr4Idx.size() == pair.pixels();
}

struct Range {
  std::size_t begin, end;
  std::string text() const { return " from " + std::to_string(begin) + " to " + std::to_string(end); }
};

Range anyRange(const Pair& pair, Dice& dice) {
  const auto begin = static_cast<std::size_t>(dice.below(static_cast<int>(pair.pixels())));
  return {begin, std::min(pair.pixels(), begin + static_cast<std::size_t>(dice.between(1, 200)))};
}

// A pixel, or none.
int anyPixel(const Pair& pair, Dice& dice) {
  return dice.chance(30) ? -1 : dice.below(static_cast<int>(pair.pixels()));
}

std::string directNeighbours(Pair& pair, Dice& dice, std::string& call) {
  const Range range = anyRange(pair, dice);
  call = "nbr4Idx" + range.text();
  const int percent = dice.oneOf(std::array{5, 50, 100});
  for (std::size_t i = range.begin; i < range.end; ++i) {
    int128_t& real = pair.engine().nbr4Idx[i];
    plain::FourNeighbours& plain = pair.model().nbr4Idx[i];
    const auto write = [&](std::int32_t& ours, std::int32_t& theirs) {
      if (dice.chance(percent)) ours = theirs = anyPixel(pair, dice);
    };
    write(real.up, plain.up);
    write(real.right, plain.right);
    write(real.down, plain.down);
    write(real.left, plain.left);
  }
  return "";
}

std::string neighbours(Pair& pair, Dice& dice, std::string& call) {
  const Range range = anyRange(pair, dice);
  call = "nbrIdx" + range.text();
  for (std::size_t i = range.begin; i < range.end; ++i) {
    std::vector<std::int32_t>& plain = pair.model().nbrIdx[i];
    for (std::size_t k = 0; k < plain.size(); ++k) {
      pair.engine().nbrIdx[i][k] = plain[k] = anyPixel(pair, dice);
    }
  }
  return "";
}

bool withModel(const Pair& pair) { return withTables(pair) && pair.model().nbrIdx.size() == pair.pixels(); }

// The host's own label map, in the place of the engine's.
std::string replaceLabels(Pair& pair, Dice& dice, std::string& call) {
  const auto label = static_cast<std::uint32_t>(dice.below(5));
  call = "labelMap replaced, all " + std::to_string(label);
  std::free(pair.engine().labelMap);
  pair.engine().labelMap = lm::test::makePlane<std::uint32_t>(pair.pixels(), label);
  pair.model().labelMap.assign(pair.pixels(), label);
  return "";
}

bool withRows(const Pair& pair) { return pair.hasEngine() && !pair.model().labelRows.empty(); }

std::string writeRow(Pair& pair, Dice& dice, std::string& call) {
  std::vector<std::vector<std::uint32_t>>& rows = pair.model().labelRows;
  const auto y = static_cast<std::size_t>(dice.below(static_cast<int>(rows.size())));
  const auto label = static_cast<std::uint32_t>(dice.below(5));
  call = "labelRows[" + std::to_string(y) + "], all " + std::to_string(label);
  std::fill(rows[y].begin(), rows[y].end(), label);
  std::copy(rows[y].begin(), rows[y].end(), pair.engine().labelRows[y]);
  return "";
}

}  // namespace

std::vector<Operation> tableOperations() {
  return {
      {"nbr4Idx", 8, withTables, directNeighbours},
      {"nbrIdx", 8, withModel, neighbours},
      {"labelMap", 4, withTables, replaceLabels},
      {"labelRows", 6, withRows, writeRow},
  };
}

}  // namespace orders
