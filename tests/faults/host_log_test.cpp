// A host whose logging function throws receives its own exception; nothing else happens.
#include <gtest/gtest.h>

#include "engine/kamble.h"
#include "plugin/entry_points.h"
#include "tests/plugin/scene.h"
#include "tests/support/capture.h"
#include "tests/support/failing_alloc.h"
#include "tests/support/thrown.h"

namespace lm::test {
namespace {

const std::string automatic = documentFor(smallGrey, R"(,"sensitivity":"-1")");

TEST(ThrowingLog, PassesThroughInitializationAndLeavesNoDetector) {
  const ThrowingHostLog log;
  EXPECT_EQ(thrownBy([] { initialization(automatic.c_str()); }), "std::runtime_error: the log is full");
  int length = -77;
  EXPECT_EQ(frameProc(nullptr, nullptr, &length), 0);
  EXPECT_EQ(length, -77);
}

TEST(ThrowingLog, LeavesNoMemoryBehind) {
  const ThrowingHostLog log;
  std::int64_t live = -1;
  for (int round = 0; round < 2; ++round) {  // the first round includes one-time allocations
    const FailingAlloc alloc;
    try {
      initialization(automatic.c_str());
    } catch (const std::runtime_error&) {
    }
    std::vector<LogCall>().swap(hostLog());  // the host's own memory
    live = alloc.live();
  }
  EXPECT_EQ(live, 0);
}

TEST(ThrowingLog, DoesNotPreventTheNextInitialization) {
  {
    const ThrowingHostLog log;
    EXPECT_ANY_THROW(initialization(automatic.c_str()));
  }
  EXPECT_TRUE(initialization(automatic.c_str()));
  ::terminate();
}

TEST(ThrowingLog, LeavesTheEnginesSettingsAsTheyWereBefore) {
  const ThrowingHostLog log;
  kAMBLE engine;
  std::vector<std::string> entries = {"frmW 8", "sensitivity -1", "frmH 8"};
  std::vector<polygon> none;
  EXPECT_ANY_THROW(engine.setParam(entries, none, none));
  EXPECT_EQ(engine.szImgX, 8);
  EXPECT_EQ(engine.szImgY, 0);
  EXPECT_EQ(engine.thrMatch, 20);
  EXPECT_FALSE(engine.autoSensitivity);
}

}  // namespace
}  // namespace lm::test
