// lightmotion.hpp: the same results, exceptions instead of errors.
#include "lightmotion/lightmotion.hpp"

#include <gmock/gmock.h>

#include "tests/lightmotion/fixture.h"

namespace lm::test {
namespace {

using testing::HasSubstr;
using testing::Property;

constexpr compact::Shape shape{100, 80, 1};

TEST(Hpp, GivesWhatTheFunctionsGive) {
  const auto frames = framesOf({shape, Kind::passing, 2}, 20);
  const Detector plain = made(documentOf(shape));
  lightmotion::Detector detector(documentOf(shape));
  std::size_t boxes = 0;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const auto time = static_cast<std::int64_t>(40 * i);
    const lightmotion::Boxes found = detector.process(frames[i].data(), 100, time);
    const std::string text = described(static_cast<int>(found.size()), found.data());
    EXPECT_EQ(text + std::string(detector.json()), feed(plain, frames[i], time));
    for (const lightmotion_box& box : found)
      EXPECT_EQ(&box, &found[static_cast<std::size_t>(&box - found.begin())]);
    boxes += found.size();
  }
  EXPECT_GT(boxes, 5U);
  EXPECT_EQ(detector.foreground(), foregroundOf(plain));
  EXPECT_EQ(detector.background(), backgroundOf(plain));
  EXPECT_EQ(detector.info().frames, 20);
  EXPECT_EQ(detector.region_name(0), "frame");
  EXPECT_EQ(detector.warnings(), "");
  detector.reset();
  EXPECT_TRUE(detector.process(frames[0].data(), 0, 1).empty());
}

TEST(Hpp, ThrowsWithTheLibrarysMessage) {
  EXPECT_THAT([] { lightmotion::Detector(R"({"frmW": 0})"); },
              testing::Throws<lightmotion::Error>(testing::AllOf(
                  Property(&lightmotion::Error::code, LIGHTMOTION_ERROR_CONFIGURATION),
                  Property(&std::exception::what, HasSubstr("\"frmW\": 0 is refused (1 or more)")))));
  lightmotion::Detector detector("{}", 100, 80, LIGHTMOTION_FORMAT_GREY);
  EXPECT_THROW(detector.process(nullptr, 0, 0), lightmotion::Error);
  EXPECT_THROW(detector.change("{\"frmW\": 3}"), lightmotion::Error);
  EXPECT_THROW(detector.foreground(), lightmotion::Error);
  EXPECT_THROW(detector.region_name(1), std::out_of_range);
}

TEST(Hpp, KeepsTheWarningsOfTheConfiguration) {
  lightmotion::Detector detector("{\"colour\": 1}", 100, 80, LIGHTMOTION_FORMAT_GREY);
  EXPECT_THAT(detector.warnings(), HasSubstr("\"colour\": unknown key"));
  detector.change("{\"colour\": null}");
  EXPECT_EQ(detector.warnings(), "");
}

TEST(Hpp, DetectorsCanBeMoved) {
  lightmotion::Detector first("{}", 100, 80, LIGHTMOTION_FORMAT_GREY);
  lightmotion_detector* const handle = first.get();
  lightmotion::Detector second(std::move(first));
  EXPECT_EQ(second.get(), handle);
  first = std::move(second);
  EXPECT_EQ(first.get(), handle);
  first = lightmotion::Detector("{}", 10, 8, LIGHTMOTION_FORMAT_BGR);
  EXPECT_EQ(first.info().width, 10);
}

}  // namespace
}  // namespace lm::test
