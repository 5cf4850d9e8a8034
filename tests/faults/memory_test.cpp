// Failing allocations not covered by plugin/allocation_failure_test.cpp: in a late frame, and in malloc below
// the library, as used by the JSON library and the C++ runtime.
#include <gtest/gtest.h>
#include <json/json.h>

#include <new>

#include "engine/kamble.h"
#include "plugin/detector.h"
#include "plugin/entry_points.h"
#include "tests/plugin/scene.h"
#include "tests/support/by_name.h"
#include "tests/support/capture.h"
#include "tests/support/failing_alloc.h"

namespace lm::test {
namespace {

constexpr FrameSize size{96, 64, 3};

// Two objects close enough to be joined, one apart, and two below the minimum box size.
const std::vector<Rect> objects = {
    {8, 8, 14, 16}, {24, 8, 14, 16}, {60, 30, 16, 20}, {80, 8, 8, 8}, {80, 50, 8, 8}};

struct Setting {
  const char* name;
  std::string more;
};
void PrintTo(const Setting& setting, std::ostream* out) { *out << setting.name; }

class ObjectExtraction : public ::testing::TestWithParam<Setting> {
 protected:
  ObjectExtraction() { detector_.init(documentFor(size, GetParam().more).c_str()); }

  void learn() {
    for (int i = 0; i < 3; ++i) feed(empty_);
  }
  // The frame's result.
  std::string feed(const Bytes& frame) {
    int length = 0;
    detector_.frameProc(frame.data(), "0", &length);
    return detector_.resText;
  }
  // Whether allocation number `failAt` of the frame failed.
  bool feedFailing(const Bytes& frame, std::uint64_t failAt) {
    FailingAlloc alloc(failAt, Reach::all);
    try {
      int length = 0;
      detector_.frameProc(frame.data(), "0", &length);
    } catch (const std::bad_alloc&) {
    } catch (const Json::Exception&) {
    }
    return alloc.refused() != Request::none;
  }
  void start() {
    detector_.terminate();
    detector_.init(documentFor(size, GetParam().more).c_str());
    learn();
  }

  lightMotion detector_;
  const Bytes empty_ = frameWith(size, {});
  const Bytes full_ = frameWith(size, objects);

 private:
  Capture quiet_{stderr};
};

INSTANTIATE_TEST_SUITE_P(With, ObjectExtraction,
                         ::testing::Values(Setting{"FixedSensitivity", R"(,"sensitivity":"3")"},
                                           Setting{"AutomaticSensitivity", R"(,"sensitivity":"-1")"}),
                         byName);

TEST_P(ObjectExtraction, GivesTheNextFramesBoxesWhicheverOfItsRequestsFailed) {
  start();
  feed(full_);
  const std::string expected = feed(full_);
  ASSERT_NE(expected, "");
  int refused = 0;
  for (std::uint64_t failAt = 1;; ++failAt) {
    start();
    if (!feedFailing(full_, failAt)) break;
    ++refused;
    EXPECT_EQ(feed(full_), expected) << "request " << failAt;
  }
  EXPECT_GT(refused, 20);
}

// The next frame requires that the rows left by a frame are blank.
TEST_P(ObjectExtraction, LeavesNoLabelsOfObjectsThatLeftDuringAFailedAllocation) {
  for (std::uint64_t failAt = 1;; ++failAt) {
    start();
    feed(full_);
    const bool refused = feedFailing(empty_, failAt);
    feed(empty_);
    const kAMBLE& engine = *detector_.engine;
    for (int y = 0; y < size.height; ++y) {
      for (int x = 0; x < size.width; ++x) {
        ASSERT_EQ(engine.labelMap[y * size.width + x], 0U) << "request " << failAt << ", row " << y;
        ASSERT_EQ(engine.labelRows[y][x], 0U) << "request " << failAt << ", row " << y;
      }
    }
    if (!refused) break;
  }
}

#ifndef __SANITIZE_ADDRESS__

enum class Start { stands, refused, threw };

Start started(const std::string& document, std::uint64_t failAt, FailingAlloc& alloc) {
  static_cast<void>(failAt);
  try {
    const bool stands = initialization(document.c_str());
    alloc.stopFailing();
    return stands ? Start::stands : Start::refused;
  } catch (const std::bad_alloc&) {
  } catch (const Json::Exception&) {  // jsoncpp's exception when malloc fails
  }
  return Start::threw;
}

TEST(MemoryBelowTheLibrary, LeavesNothingBehindWhenItRunsOut) {
  const Capture out(stdout);
  const Capture err(stderr);
  const std::string document = documentFor(size, R"(,"sensitivity":"3","ror":[{"name":"tree","points":[]}])");
  int thrown = 0;
  for (std::uint64_t failAt = 0;; ++failAt) {
    Request refused = Request::none;
    std::int64_t live = 0;
    Start start = Start::refused;
    {
      FailingAlloc alloc(failAt, Reach::all);
      start = started(document, failAt, alloc);
      ::terminate();
      live = alloc.live();
      refused = alloc.refused();
    }
    if (failAt == 0) continue;  // one-time allocations were made now
    EXPECT_EQ(live, 0) << "request " << failAt;
    if (start == Start::threw) ++thrown;
    ASSERT_TRUE(initialization(document.c_str())) << "after request " << failAt;
    ::terminate();
    if (refused == Request::none) break;
  }
  EXPECT_GT(thrown, 100);
}

#endif

}  // namespace
}  // namespace lm::test
