// Heat maps: counts, colours and the file.
#include <gtest/gtest.h>

#include "host/outputs/report/heat_map.h"
#include "host/outputs/report/heat_map_file.h"
#include "host/outputs/report/percent.h"
#include "host/outputs/report/quiet_frame.h"
#include "tests/host/clips.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::events;
using namespace lm::host::outputs::report;
using namespace lm::host::source;
using program::Folder;

// On 10 x 8 pixels: columns 2 to 4 and rows 2 to 5; columns 4 to 7 and rows 4 to 5.
const cv::Rect2d kFirst(0.2, 0.25, 0.3, 0.5);
const cv::Rect2d kSecond(0.4, 0.5, 0.4, 0.25);

HeatMap small_map() {
  HeatMap map({10, 8});
  map.add({{kFirst}});
  map.add({{kSecond}, {kSecond}});
  map.add({});
  map.add({});
  return map;
}

TEST(HeatMap, CountsTheFramesInWhichAPlaceWasUnderABox) {
  const HeatMap map = small_map();
  EXPECT_EQ(map.frames(), 4);
  const auto at = [&](int x, int y) { return map.counts().at<int>(y, x); };
  EXPECT_EQ(at(2, 2), 1);
  EXPECT_EQ(at(4, 4), 2) << "under the first box and under the second";
  EXPECT_EQ(at(7, 5), 1) << "two boxes in one frame count once";
  EXPECT_EQ(at(1, 2), 0);
  EXPECT_EQ(at(5, 3), 0);
  EXPECT_EQ(at(8, 5), 0);
  // 3 x 4 pixels and 4 x 2 pixels.
  EXPECT_EQ(cv::sum(map.counts())[0], 20);
}

TEST(HeatMap, TheBusiestPlaceIsAShareOfAllFrames) {
  EXPECT_DOUBLE_EQ(small_map().highest(), 0.5);
  EXPECT_DOUBLE_EQ(HeatMap({10, 8}).highest(), 0);
}

TEST(HeatMap, CountsLargeFramesMoreCoarsely) {
  EXPECT_EQ(HeatMap({640, 360}).counts().size(), cv::Size(640, 360));
  EXPECT_EQ(HeatMap({1280, 720}).counts().size(), cv::Size(640, 360));
  EXPECT_EQ(HeatMap({360, 1440}).counts().size(), cv::Size(160, 640));
  EXPECT_EQ(HeatMap({9000, 2}).counts().size(), cv::Size(640, 1));
}

TEST(HeatMap, BoxesAreClippedToTheFrame) {
  HeatMap map({10, 8});
  map.add({{{-1, -1, 1.0625, 1.125}}, {{2, 2, 1, 1}}});
  EXPECT_EQ(cv::sum(map.counts())[0], 1) << "the corner's pixel alone";
}

void expect_near(const cv::Vec3b& found, const cv::Vec3d& expected) {
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(found[c], expected[c], 1.5) << "channel " << c;
}

// The colours range from (59, 18, 48), blue first, to (3, 4, 122); blended at 0.6 over the grey of 100.
TEST(HeatMap, LaysColourOverAFrameMadeGrey) {
  const cv::Mat grey_red = small_map().over(cv::Mat(8, 10, CV_8UC3, cv::Scalar(100, 100, 100)));
  expect_near(grey_red.at<cv::Vec3b>(4, 4), {0.6 * 3 + 40, 0.6 * 4 + 40, 0.6 * 122 + 40});
  expect_near(grey_red.at<cv::Vec3b>(0, 0), {100, 100, 100});
  // Grey is 0.114 blue, 0.587 green and 0.299 red.
  const cv::Mat coloured = small_map().over(cv::Mat(8, 10, CV_8UC3, cv::Scalar(200, 100, 50)));
  const double grey = 0.114 * 200 + 0.587 * 100 + 0.299 * 50;
  expect_near(coloured.at<cv::Vec3b>(0, 0), {grey, grey, grey});
}

TEST(HeatMap, WithoutBoxesIsTheFrameInGrey) {
  HeatMap map({10, 8});
  map.add({});
  const cv::Mat picture = map.over(cv::Mat(8, 10, CV_8UC3, cv::Scalar(100, 100, 100)));
  EXPECT_EQ(cv::sum(picture), cv::Scalar(8000, 8000, 8000));
}

TEST(HeatMap, RareMotionGetsMoreOfTheColours) {
  EXPECT_DOUBLE_EQ(heat_at(0), 0);
  EXPECT_DOUBLE_EQ(heat_at(0.5), 0.25);
  EXPECT_DOUBLE_EQ(heat_at(1), 1);
  HeatMap map({4, 1});
  for (int i = 0; i < 4; ++i) map.add({{{0, 0, i == 0 ? 0.5 : 0.25, 1}}});
  // One frame of four: the colour in the middle of the scale, which is bright green, not the one at a
  // quarter.
  const auto rare = map.over(cv::Mat::zeros(1, 4, CV_8UC3)).at<cv::Vec3b>(0, 1);
  expect_near(rare, {0.6 * 60, 0.6 * 252, 0.6 * 164});
}

TEST(HeatMap, LegendIsBelowThePicture) {
  for (const int width : {40, 320, 1920}) {
    const cv::Mat picture(width / 2, width, CV_8UC3, cv::Scalar(1, 200, 1));
    const cv::Mat whole = with_legend(picture, 0.5);
    ASSERT_EQ(whole.cols, width);
    ASSERT_GT(whole.rows, picture.rows + 15);
    EXPECT_EQ(cv::norm(whole.rowRange(0, picture.rows), picture, cv::NORM_INF), 0);
    cv::Mat hottest;
    cv::inRange(whole.rowRange(picture.rows, whole.rows), cv::Scalar(0, 0, 110), cv::Scalar(12, 24, 150),
                hottest);
    EXPECT_GT(cv::countNonZero(hottest), 3) << "the last colour of the scale";
  }
}

TEST(Percent, HasAsManyDigitsAsMatter) {
  const std::pair<double, const char*> cases[] = {
      {0, "0 %"},       {0.00126, "0.13 %"}, {0.00994, "0.99 %"},  {0.00996, "1.0 %"},
      {0.042, "4.2 %"}, {0.0994, "9.9 %"},   {0.0996, "10 %"},     {0.366, "37 %"},
      {1, "100 %"},     {7, "100 %"},        {std::nan(""), "0 %"}};
  for (const auto& [share, text] : cases) EXPECT_EQ(percent(share), text) << share;
}

TEST(QuietFrame, IsTheFirstWithoutABoxOrElseTheFirst) {
  const auto filled = [](int value) { return cv::Mat(2, 2, CV_8UC3, cv::Scalar::all(value)); };
  QuietFrame ground({2, 2});
  const auto value = [&] { return int(ground.image().at<cv::Vec3b>(1, 1)[0]); };
  EXPECT_EQ(value(), 0);
  const std::pair<int, bool> offers[] = {{10, false}, {20, false}, {30, true}, {40, true}};
  const int expected[] = {10, 10, 30, 30};
  for (int i = 0; i < 4; ++i) {
    ground.offer(filled(offers[i].first), offers[i].second);
    EXPECT_EQ(value(), expected[i]) << i;
  }
}

TEST(HeatMapFile, IsAPngOfTheQuietFrame) {
  const Folder folder;
  HeatMapFile file(folder / "heat.png", {64, 48});
  Frame frame;
  Observation seen;
  frame.image = cv::Mat(48, 64, CV_8UC3, cv::Scalar::all(90));
  file.frame(frame, seen);
  frame.image.setTo(cv::Scalar::all(250));
  seen.boxes = {{{0.5, 0.5, 0.5, 0.5}}};
  file.frame(frame, seen);
  file.finish();
  EXPECT_FALSE(std::filesystem::exists(folder / "heat.png")) << "not before all outputs are whole";
  file.commit();
  EXPECT_TRUE(program::read(folder / "heat.png").starts_with("\x89PNG\r\n\x1a\n"));
  const cv::Mat picture = clips::still(folder / "heat.png");
  EXPECT_GT(picture.rows, 48);
  EXPECT_EQ(picture.at<cv::Vec3b>(10, 10), cv::Vec3b(90, 90, 90));
  expect_near(picture.at<cv::Vec3b>(36, 48), {0.6 * 3 + 36, 0.6 * 4 + 36, 0.6 * 122 + 36});
}

}  // namespace
