// Converting decoded pictures, and drawing on them.
#include <gtest/gtest.h>

#include "host/outputs/overlay.h"
#include "host/source/picture_converter.h"

namespace {

using namespace lm::host::outputs;
using namespace lm::host::source;

av::Picture plain_picture(cv::Size size, std::uint8_t luma, AVColorRange range = AVCOL_RANGE_UNSPECIFIED) {
  av::Picture picture = av::new_picture(size, AV_PIX_FMT_YUV420P);
  picture->color_range = range;
  for (int plane = 0; plane < 3; ++plane) {
    const int rows = plane == 0 ? size.height : (size.height + 1) / 2;
    std::memset(picture->data[plane], plane == 0 ? luma : 128,
                static_cast<std::size_t>(picture->linesize[plane]) * static_cast<std::size_t>(rows));
  }
  return picture;
}

// Converters work in blocks; the rest of a row must not be forgotten.
TEST(PictureConverter, FillsEveryPixelAtAnyWidth) {
  for (int width = 1; width <= 70; ++width) {
    for (const int height : {1, 2, 7}) {
      const cv::Mat image =
          PictureConverter({width, height}, 0).convert(*plain_picture({width, height}, 235));
      ASSERT_EQ(image.size(), cv::Size(width, height));
      ASSERT_TRUE(image.isContinuous());
      double least = 0;
      cv::minMaxLoc(image.reshape(1), &least);
      EXPECT_GE(least, 250) << width << " x " << height;
    }
  }
}

// 235 is white in the limited range; in the full range it is a light grey.
TEST(PictureConverter, UsesTheRangeThatThePictureStates) {
  const cv::Size size(32, 16);
  PictureConverter converter(size, 0);
  EXPECT_EQ(converter.convert(*plain_picture(size, 235, AVCOL_RANGE_MPEG)).at<cv::Vec3b>(8, 8)[1], 255);
  EXPECT_NEAR(converter.convert(*plain_picture(size, 235, AVCOL_RANGE_JPEG)).at<cv::Vec3b>(8, 8)[1], 235, 2);
}

TEST(PictureConverter, TurnsClockwise) {
  av::Picture picture = av::new_picture({3, 2}, AV_PIX_FMT_BGR24);
  for (int i = 0; i < 6; ++i)
    av::view(*picture).at<cv::Vec3b>(i / 3, i % 3) = cv::Vec3b::all(static_cast<std::uint8_t>(10 * i));
  //  0 10 20
  // 30 40 50
  const struct {
    int turns;
    cv::Size size;
    int upper_left;
  } cases[] = {{0, {3, 2}, 0}, {1, {2, 3}, 30}, {2, {3, 2}, 50}, {3, {2, 3}, 20}};
  for (const auto& [turns, size, upper_left] : cases) {
    PictureConverter converter({3, 2}, turns);
    const cv::Mat image = converter.convert(*picture);
    EXPECT_EQ(converter.size(), size);
    EXPECT_EQ(image.size(), size);
    EXPECT_EQ(image.at<cv::Vec3b>(0, 0)[0], upper_left) << turns;
    EXPECT_TRUE(image.isContinuous());
  }
}

TEST(Overlay, ABoxCoversEveryPixelThatItTouches) {
  // 0.25 .. 0.51 of 10 columns: from 2.5 to 5.1, so columns 2 to 5.
  EXPECT_EQ(pixels_of({0.25, 0.5, 0.26, 0.5}, {10, 10}), cv::Rect(2, 5, 4, 5));
}

TEST(Overlay, ABoxIsCutOffAtTheFramesEdges) {
  EXPECT_EQ(pixels_of({-0.5, -0.1, 2, 0.2}, {10, 10}), cv::Rect(0, 0, 10, 1));
  EXPECT_EQ(pixels_of({0.9, 0.9, 1e30, 1e30}, {10, 10}), cv::Rect(9, 9, 1, 1));
  EXPECT_TRUE(pixels_of({1.2, 0, 0.1, 1}, {10, 10}).empty());
  EXPECT_TRUE(pixels_of({-1, 0, 0.5, 1}, {10, 10}).empty());
}

TEST(Overlay, LinesGrowWithTheFrame) {
  EXPECT_EQ(line_width({1, 1}), 1);
  EXPECT_EQ(line_width({640, 360}), 1);
  EXPECT_EQ(line_width({1920, 1080}), 4);  // (1080 + 150) / 300
}

TEST(Overlay, DrawsTheBordersOfBoxesAndNotTheirInside) {
  cv::Mat image(100, 200, CV_8UC3, cv::Scalar(0, 0, 0));
  draw_overlay(image, {{{0.5, 0.5, 0.25, 0.25}}}, "");
  // Columns 100 to 149 and rows 50 to 74, one pixel wide.
  const auto bright = [&](int x, int y) { return image.at<cv::Vec3b>(y, x)[1] > 200; };
  EXPECT_TRUE(bright(100, 50) && bright(149, 74) && bright(120, 50) && bright(100, 60));
  EXPECT_FALSE(bright(99, 60) || bright(150, 60) || bright(120, 49) || bright(120, 75) || bright(120, 60));
}

TEST(Overlay, DrawsOnFramesOfAnySize) {
  for (const cv::Size size :
       {cv::Size(1, 1), cv::Size(2, 9), cv::Size(40, 12), cv::Size(3000, 5), cv::Size(5, 900)}) {
    cv::Mat image(size, CV_8UC3, cv::Scalar(9, 9, 9));
    draw_overlay(image, {{{-5, -5, 10, 10}}, {{0.9, 0.9, 0.3, 0.3}}, {{0.2, 0.2, 0, 0}}}, "0:12.4  3 boxes");
    EXPECT_EQ(image.size(), size);
  }
}

TEST(Overlay, WritesTheCaptionIntoTheUpperLeftCornerOnly) {
  cv::Mat image(360, 640, CV_8UC3, cv::Scalar(90, 90, 90));
  const cv::Mat before = image.clone();
  draw_overlay(image, {}, "0:12.4  3 boxes");
  const cv::Rect corner(0, 0, 320, 60);
  EXPECT_GT(cv::norm(image(corner), before(corner), cv::NORM_INF), 100);
  cv::Mat rest = image.clone();
  before(corner).copyTo(rest(corner));
  EXPECT_EQ(cv::norm(rest, before, cv::NORM_INF), 0);
}

}  // namespace
