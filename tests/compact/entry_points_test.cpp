// The entry points give what a detector with the open engine gives: several lives in a process, with frames
// and timestamps that are refused in between.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <ostream>

#include "plugin/detector.h"
#include "plugin/entry_points.h"
#include "tests/compact/scenes.h"
#include "tests/support/capture.h"
#include "tests/support/failing_alloc.h"
#include "tests/support/thrown.h"
#include "tests/system/scripted_clock.h"

namespace lm::test {
namespace {

using compact::Shape;

// What a host sees of a frame.
struct Answer {
  std::string thrown;
  int value = -77;
  int length = -77;
  std::string text;
  int drawn = 0;  // the next number of rand()

  bool operator==(const Answer&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Answer& answer) {
  return out << answer.value << ", " << answer.length << ", " << answer.text << ", threw " << answer.thrown;
}

template <typename FrameProc, typename GetRes>
Answer answerOf(const FrameProc& frameProc, const GetRes& getRes) {
  Answer answer;
  std::srand(11);
  answer.thrown = thrownBy([&] { answer.value = frameProc(&answer.length); });
  answer.drawn = std::rand();
  std::vector<char> text(1 << 16);
  getRes(text.data());
  answer.text = text.data();
  return answer;
}

// The entry points beside a detector with the open engine.
class EntryPointsBesideTheOpenEngine : public ::testing::Test {
 protected:
  EntryPointsBesideTheOpenEngine() { ::terminate(); }
  ~EntryPointsBesideTheOpenEngine() override { ::terminate(); }

  // Whether both are ready.
  bool start(const std::string& document) {
    open_ = std::make_unique<lightMotion>();
    bool ready = false;
    bool openReady = false;
    const std::string thrown = thrownBy([&] { ready = initialization(document.c_str()); });
    EXPECT_EQ(thrown, thrownBy([&] { openReady = open_->init(document.c_str()); })) << document;
    EXPECT_EQ(ready, openReady) << document;
    return ready;
  }

  // Whether both answer the same.
  bool feed(const std::uint8_t* pixels, const char* timestamp) {
    const auto answer = answerOf([&](int* length) { return frameProc(pixels, timestamp, length); },
                                 [](char* text) { return getRes(text); });
    const auto expected = answerOf([&](int* length) { return open_->frameProc(pixels, timestamp, length); },
                                   [&](char* text) { return open_->getRes(text); });
    EXPECT_EQ(answer, expected);
    texts_ += answer.text.empty() ? 0 : 1;
    return answer == expected;
  }

  int texts_ = 0;  // frames with a result

 private:
  std::unique_ptr<lightMotion> open_;
  Capture out_{stdout};
  Capture err_{stderr};
};

// ---- random lives -----------------------------------------------------------------------------------------

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

std::string anyRegion(Dice& dice) {
  std::string points;
  for (int corners = dice.between(2, 6); corners > 0; --corners) {
    points += "{\"x\":" + quoted(std::to_string(dice.between(-10, 110)) + "e-2") +
              ",\"y\":" + quoted(std::to_string(dice.between(-10, 110)) + "e-2") + "}" +
              (corners > 1 ? "," : "");
  }
  return "{\"name\":\"any\",\"points\":[" + points + "]}";
}

constexpr const char* wholeRegion =
    R"({"points":[{"x":"-1","y":"-1"},{"x":"2","y":"-1"},{"x":"2","y":"2"},{"x":"-1","y":"2"}]})";

std::string anyDocument(const Shape& shape, Dice& dice) {
  std::string document = "{";
  for (const auto& list : {sizeEntries(shape), anyDocumentEntries(dice)}) {
    for (const std::string& entry : list) {
      const std::size_t blank = entry.find(' ');
      document += quoted(entry.substr(0, blank)) + ":" + quoted(entry.substr(blank + 1)) + ",";
    }
  }
  document += "\"roi\":[" + (dice.chance(60) ? std::string(wholeRegion) : anyRegion(dice)) + "]";
  if (dice.chance(30)) document += ",\"ror\":[" + anyRegion(dice) + "]";
  return document + "}";
}

// Sizes and channel counts that a host can configure; frames of 2 and 5 channels are refused one by one.
Shape anyShape(Dice& dice) {
  const Shape shape{dice.between(1, 100), dice.between(1, 40), dice.oneOf({1, 3, 4, 3, 1, 4, 3, 3, 2, 5})};
  return dice.chance(10) ? Shape{shape.width, 0, shape.channels} : shape;
}

constexpr std::array oddTimestamps = {"",    "x",  "-5",  "0", "99999999999999999999", "9223372036854775807",
                                      " 77", "+3", "12px"};

TEST_F(EntryPointsBesideTheOpenEngine, AnswerTheSameInEveryLifeOfAProcess) {
  Dice dice(1);
  for (int life = 0; life < 60; ++life) {
    SCOPED_TRACE("life " + std::to_string(life));
    const Shape shape = anyShape(dice);
    const bool ready = start(anyDocument(shape, dice));
    const Scene scene{shape, anyKind(dice), dice.oneOf({0.5, 2.0, 4.0})};
    const int interval = dice.oneOf({40, 330});
    for (int frame = 0; ready && frame < 30; ++frame) {
      const auto pixels = draw(scene, frame, dice);
      std::string timestamp = std::to_string(1000 + interval * frame);
      if (dice.chance(10))
        timestamp = oddTimestamps[static_cast<std::size_t>(dice.below(oddTimestamps.size()))];
      setScriptedTime({1700000000, frame * 40000 % 1000000});
      ASSERT_TRUE(
          feed(dice.chance(5) ? nullptr : pixels.data(), dice.chance(2) ? nullptr : timestamp.c_str()));
    }
    EXPECT_EQ(::terminate(), 1);
    if (HasFailure()) return;
  }
  EXPECT_GT(texts_, 100);
}

// ---- one life ---------------------------------------------------------------------------------------------

std::string documentOf(const Shape& shape, const std::string& more = "") {
  return R"({"frmW":")" + std::to_string(shape.width) + R"(","frmH":")" + std::to_string(shape.height) +
         R"(","frmChn":")" + std::to_string(shape.channels) + R"(","roi":[)" + wholeRegion + "]" + more + "}";
}

// The open engine makes an array for every pixel.
TEST_F(EntryPointsBesideTheOpenEngine, AllocateNothingPerPixel) {
  const Shape shape{40, 30, 3};
  ASSERT_TRUE(start(documentOf(shape)));
  const std::vector<std::uint8_t> pixels(40 * 30 * 3, 50);
  int length = 0;
  const FailingAlloc alloc;
  ASSERT_EQ(frameProc(pixels.data(), "1000", &length), 1);
  EXPECT_LT(alloc.requests(), 100U);
}

TEST_F(EntryPointsBesideTheOpenEngine, PrintTheSame) {
  const std::vector<std::uint8_t> pixels(40 * 30 * 5, 50);
  for (const int channels : {1, 2, 3, 4, 5}) {
    const std::string document = documentOf({40, 30, channels});
    lightMotion open;
    ASSERT_TRUE(open.init(document.c_str()));
    ASSERT_TRUE(initialization(document.c_str()));
    for (const std::uint8_t* frame :
         {static_cast<const std::uint8_t*>(nullptr), pixels.data(), pixels.data()}) {
      int length = 0;
      const Printed printed = printedBy([&] { frameProc(frame, "1000", &length); });
      EXPECT_EQ(printed, printedBy([&] { open.frameProc(frame, "1000", &length); })) << channels;
    }
    ::terminate();
  }
}

}  // namespace
}  // namespace lm::test
