// Every allocation between initialization and terminate fails once. Nothing crashes, nothing leaks, and the
// detector continues where possible.
#include <gtest/gtest.h>

#include <array>
#include <new>

#include "plugin/detector.h"
#include "plugin/entry_points.h"
#include "plugin/instance.h"
#include "tests/plugin/scene.h"
#include "tests/support/by_name.h"
#include "tests/support/capture.h"
#include "tests/support/failing_alloc.h"

namespace lm::test {
namespace {

enum class Start { ready, refused, threw };

struct Life {
  Start start = Start::refused;
  bool refusedAtStart = false;
  int framesThrown = 0;              // with std::bad_alloc
  bool otherThrown = false;          // with anything else
  bool inertWithoutDetector = true;  // calls return 0 and write nothing
  bool everyFrameAnswered = true;
  int lastLength = 0;
  std::uint64_t requests = 0;
  Request refused = Request::none;
  std::int64_t leaked = 0;  // blocks
};

struct Scene {
  const char* name;
  std::string document;
  FrameSize size;
};
void PrintTo(const Scene& scene, std::ostream* out) { *out << scene.name; }

class FailingAllocations : public ::testing::TestWithParam<Scene> {
 protected:
  // A bar as high as the frame. While allocations fail it moves between two positions, so the model is seeded
  // with it at one of these; afterwards it is at a third, where it is foreground. Of its eight columns five
  // remain after erosion, which does not apply at the frame's edge: 80 pixels.
  FailingAllocations() {
    for (int i = 0; i < numFrames; ++i) {
      const int place = i < numFailing ? i % 2 : 2;
      frames_[static_cast<std::size_t>(i)] = frameWith(GetParam().size, {{8 * place, 0, 8, 16}});
    }
  }

  // From initialization to terminate, with allocation number `failAt` failing unless it is after the third
  // frame. Only the library and the host's log allocate here.
  Life runWith(std::uint64_t failAt) {
    Life life;
    FailingAlloc alloc(failAt);
    life.start = started();
    life.refusedAtStart = alloc.refused() != Request::none;
    if (life.start != Start::ready) {
      life.inertWithoutDetector = callsAreInert();
    } else {
      for (int i = 0; i < numFrames; ++i) {
        if (i == numFailing) alloc.stopFailing();
        feed(life, i);
      }
    }
    alloc.stopFailing();
    ::terminate();
    std::vector<LogCall>().swap(hostLog());  // the host's own blocks
    life.requests = alloc.requests();
    life.refused = alloc.refused();
    life.leaked = alloc.live();
    return life;
  }

  static constexpr int numFailing = 3;  // the first frames
  static constexpr int numFrames = 6;

 private:
  static Start started() {
    try {
      return initialization(GetParam().document.c_str()) ? Start::ready : Start::refused;
    } catch (const std::bad_alloc&) {
      return Start::threw;
    }
  }

  bool callsAreInert() {
    int length = -77;
    char out = 'x';
    return frameProc(frames_[0].data(), "1", &length) == 0 && length == -77 && getRes(&out) == 0 &&
           out == 'x';
  }

  void feed(Life& life, int index) {
    static constexpr std::array<const char*, numFrames> times = {"40", "80", "120", "160", "200", "240"};
    const auto i = static_cast<std::size_t>(index);
    try {
      int length = -77;
      if (frameProc(frames_[i].data(), times[i], &length) != 1 || length < 0) life.everyFrameAnswered = false;
      if (getRes(text_.data()) != 1) life.everyFrameAnswered = false;
      life.lastLength = length;
    } catch (const std::bad_alloc&) {
      ++life.framesThrown;
    } catch (...) {
      life.otherThrown = true;
    }
  }

  std::array<Bytes, numFrames> frames_;
  std::array<char, 4096> text_{};
};

constexpr FrameSize tinyGrey{24, 16, 1};
constexpr FrameSize tinyColour{24, 16, 3};

INSTANTIATE_TEST_SUITE_P(
    In, FailingAllocations,
    ::testing::Values(
        Scene{"Grey", documentFor(tinyGrey), tinyGrey},
        Scene{"ColourWithEverySetting",
              documentFor(tinyColour,
                          R"(,"sensitivity":"-1","lcAdap":"2","minBoxW":"0.01","minBoxH":"0.01",)"
                          R"("maxBoxW":"1","maxBoxH":"1","lifeStatic":"5","ror":[{"name":"a tree with)"
                          R"( a name that needs its own memory","points":[{"x":"5","y":"5"}]}])"),
              tinyColour}),
    byName);

TEST_P(FailingAllocations, OneAtATimeNeverCrashLeakOrDestroyTheDetector) {
  const Capture err(stderr);
  runWith(0);  // makes the one-time allocations

  int quietRefusals = 0;
  for (std::uint64_t failAt = 1;; ++failAt) {
    const Life life = runWith(failAt);
    SCOPED_TRACE("request " + std::to_string(failAt));
    EXPECT_EQ(life.leaked, 0);
    EXPECT_FALSE(life.otherThrown);
    EXPECT_TRUE(life.inertWithoutDetector);
    EXPECT_TRUE(life.everyFrameAnswered);
    if (life.refused == Request::none) {
      EXPECT_EQ(life.start, Start::ready);
      EXPECT_GT(life.lastLength, 0);
      break;
    }
    // The only request whose refusal during initialization still gives a detector is that for the usable
    // region. Without it every pixel is outside, and there are no boxes.
    if (life.start == Start::ready) {
      EXPECT_EQ(life.lastLength > 0, !life.refusedAtStart);
    }
    if (life.refused == Request::aligned) {
      EXPECT_EQ(life.start, Start::ready);
      EXPECT_EQ(life.framesThrown, 0);
    }
    EXPECT_EQ(life.start == Start::refused, life.refused == Request::quietNew);
    if (life.refused == Request::quietNew) ++quietRefusals;
    if (HasFailure()) break;
  }
  EXPECT_EQ(quietRefusals, 2);  // the holder and the detector
}

TEST_P(FailingAllocations, InInitializationDoNotAffectTheNextOne) {
  const Capture err(stderr);
  for (std::uint64_t failAt = 1;; ++failAt) {
    const Life broken = runWith(failAt);
    if (broken.start == Start::ready) break;
    const Life life = runWith(0);
    EXPECT_EQ(life.start, Start::ready) << failAt;
    EXPECT_EQ(life.framesThrown, 0) << failAt;
    EXPECT_GT(life.lastLength, 0) << failAt;
    if (HasFailure()) break;
  }
}

TEST(Allocations, ARefusedDocumentReleasesEverything) {
  const Capture out(stdout);
  const std::array<std::string, 4> documents = {"not json", documentFor({64, 32, 0}),
                                                documentFor(smallGrey, "", ""), documentFor({0, 0, 0})};
  for (int round = 0; round < 2; ++round) {  // the first makes the one-time allocations
    for (const std::string& document : documents) {
      const FailingAlloc alloc;
      const bool ready = initialization(document.c_str());
      const std::int64_t live = alloc.live();
      EXPECT_FALSE(ready);
      if (round > 0) {
        EXPECT_EQ(live, 0) << document;
      }
    }
  }
}

TEST(Allocations, AnExceptionFromTheDocumentReleasesEverything) {
  const std::array<std::string, 4> documents = {
      documentFor(smallGrey, R"(,"minBoxW":"x")"), R"({"frmW":"x"})", "[]",
      documentFor(smallGrey,
                  R"(,"ror":[{"name":"a long name, and more of it","points":[{"x":"1","y":"1e99"}]}])")};
  for (int round = 0; round < 2; ++round) {
    for (const std::string& document : documents) {
      const FailingAlloc alloc;
      bool thrown = false;
      try {
        initialization(document.c_str());
      } catch (const std::exception&) {
        thrown = true;
      }
      const std::int64_t live = alloc.live();
      EXPECT_TRUE(thrown);
      if (round > 0) {
        EXPECT_EQ(live, 0) << document;
      }
    }
  }
}

TEST(Allocations, DestroyingTheHolderReleasesTheDetector) {
  const Capture err(stderr);
  const std::string document = documentFor(smallGrey);
  const Bytes frame = frameWith(smallGrey, {});
  const FailingAlloc alloc;
  {
    CInstance holder;
    holder.detector = new lightMotion;
    holder.detector->init(document.c_str());
    int length = 0;
    holder.detector->frameProc(frame.data(), "1", &length);
  }
  const std::int64_t live = alloc.live();
  EXPECT_EQ(live, 0);
}

TEST(Allocations, TerminateAllocatesNothing) {
  const Capture err(stderr);
  ASSERT_TRUE(initialization(documentFor(smallGrey).c_str()));
  int length = 0;
  frameProc(frameWith(smallGrey, {}).data(), "1", &length);
  const FailingAlloc alloc;
  ::terminate();
  EXPECT_EQ(alloc.requests(), 0U);
}

}  // namespace
}  // namespace lm::test
