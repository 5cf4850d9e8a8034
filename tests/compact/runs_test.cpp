// The run labeller on its own.
#include "compact/runs.h"

#include <gtest/gtest.h>

#include "compact/bit_rows.h"

namespace lm::compact {
namespace {

struct Span {
  std::uint32_t label;
  std::int32_t count, first, left, top, right, bottom;
  bool operator==(const Span&) const = default;
};
void PrintTo(const Span& span, std::ostream* out) {
  *out << "label " << span.label << ", " << span.count << " pixels from " << span.first << ", columns "
       << span.left << " to " << span.right << ", rows " << span.top << " to " << span.bottom;
}

// Feeds rows of one word each: bit k is column k.
class Labelled {
 public:
  Labelled() { labeller_.start(64); }

  Labelled& row(std::int32_t y, std::uint64_t columns) {
    BitRows bits;
    bits.reset(1, 1);
    *bits.row(0) = columns;
    labeller_.addRow(bits.row(0), 1, y);
    return *this;
  }
  std::vector<Span> spans() {
    std::vector<Span> list;
    for (const auto& [c, left, top, right, bottom] : labeller_.number()) {
      list.push_back({c.label, c.count, c.first, left, top, right, bottom});
    }
    return list;
  }

 private:
  RunLabeller labeller_;
};

TEST(Runs, OmittedRowsSeparate) {
  EXPECT_EQ(Labelled().row(2, 0b0110).row(4, 0b0110).spans(),
            (std::vector<Span>{{2, 2, 129, 1, 2, 2, 2}, {3, 2, 257, 1, 4, 2, 4}}));
}

TEST(Runs, RowWithoutARunSeparates) {
  EXPECT_EQ(Labelled().row(2, 0b0110).row(3, 0).row(4, 0b0110).spans().size(), 2U);
}

TEST(Runs, ComponentSpansAllItsRuns) {
  EXPECT_EQ(Labelled().row(5, 0b00100).row(6, 0b11110).row(7, 0b10000).spans(),
            (std::vector<Span>{{2, 6, 322, 1, 5, 4, 7}}));
}

TEST(Runs, RunReachesTheEndOfTheRow) {
  EXPECT_EQ(Labelled().row(0, std::uint64_t{3} << 62).row(1, std::uint64_t{1} << 63).spans(),
            (std::vector<Span>{{2, 3, 62, 62, 0, 63, 1}}));
}

TEST(Runs, StartForgetsEarlierRuns) {
  RunLabeller labeller;
  BitRows bits;
  bits.reset(1, 1);
  *bits.row(0) = 1;
  for (int round = 0; round < 2; ++round) {
    labeller.start(64);
    labeller.addRow(bits.row(0), 1, 7);
    EXPECT_EQ(labeller.number().size(), 1U) << round;
  }
}

}  // namespace
}  // namespace lm::compact
