// The engine equals the plain model in every field after every frame.
#include <gtest/gtest.h>

#include <ostream>
#include <set>

#include "tests/system/driver.h"

static void PrintTo(const Sequence& sequence, std::ostream* out) { *out << sequence.name; }

namespace {

class EngineAndPlainModel : public ::testing::TestWithParam<Sequence> {};

TEST_P(EngineAndPlainModel, AgreeInEveryFieldAfterEveryFrame) { EXPECT_EQ(compareOver(GetParam()), ""); }

INSTANTIATE_TEST_SUITE_P(Sequences, EngineAndPlainModel, ::testing::ValuesIn(allSequences()),
                         [](const auto& sequence) { return sequence.param.name; });

TEST(EntryPointsAndPlainModel, GiveTheSameResultTexts) {
  for (const Sequence& sequence : allSequences()) {
    if (sequence.configuredBy != ConfiguredBy::document || sequence.before) continue;
    EXPECT_EQ(compareTextsOver(sequence), "");
  }
}

// A branch that no sequence reaches is not compared.
TEST(PlainModel, TakesEveryBranchInSomeSequence) {
  plain::BranchCounts total{};
  for (const Sequence& sequence : allSequences()) {
    const plain::BranchCounts taken = branchesTaken(sequence);
    for (std::size_t i = 0; i < total.size(); ++i) total[i] += taken[i];
  }
  for (std::size_t i = 0; i < total.size(); ++i) EXPECT_GT(total[i], 0U) << plain::branchNames[i];
}

}  // namespace
