#include "tests/adaptive/scene.h"

#include <cmath>
#include <opencv2/imgproc.hpp>

namespace lm::test {
namespace {

// Noise of one size of detail: `cell` pixels.
cv::Mat texture(cv::Size size, int cell, double deviation, cv::RNG& random) {
  cv::Mat coarse(size.height / cell + 2, size.width / cell + 2, CV_32FC3);
  random.fill(coarse, cv::RNG::NORMAL, 0, deviation);
  cv::Mat fine;
  cv::resize(coarse, fine, size, 0, 0, cv::INTER_CUBIC);
  return fine;
}

}  // namespace

cv::Mat ground(cv::Size size, std::uint64_t seed) {
  cv::RNG random(seed);
  cv::Mat scene(size, CV_32FC3, cv::Scalar::all(110));
  scene += texture(size, 4, 6, random);
  scene += texture(size, 12, 8, random);
  scene += texture(size, 40, 14, random);
  for (int i = 0; i < 25; ++i) {
    // One after the other: compilers differ in the order in which they evaluate arguments.
    cv::Rect block;
    block.height = random.uniform(10, size.height / 4);
    block.width = random.uniform(10, size.width / 5);
    block.y = random.uniform(0, size.height);
    block.x = random.uniform(0, size.width);
    scene(block & cv::Rect({}, size)) += cv::Scalar::all(random.uniform(-40, 40));
  }
  cv::GaussianBlur(scene, scene, {3, 3}, 0.6);
  return cv::min(cv::max(scene, 8), 240);
}

Thing car(cv::Size size, std::uint64_t seed) {
  cv::RNG random(seed);
  cv::Mat shape = cv::Mat::zeros(size, CV_32F);
  shape(cv::Rect(0, size.height / 3, size.width, size.height - size.height / 3)) = 1;
  shape(cv::Rect(size.width / 5, 0, size.width * 3 / 5, size.height / 2)) = 1;
  return {shape, texture(size, 5, 8, random)};
}

Thing person(int width, std::uint64_t seed) {
  cv::RNG random(seed);
  const cv::Size size(width, width * 13 / 5);
  cv::Mat shape = cv::Mat::zeros(size, CV_32F);
  cv::ellipse(shape, {width / 2, size.height * 6 / 10}, {width / 2 - 1, size.height * 4 / 10 - 1}, 0, 0, 360,
              1, cv::FILLED);
  cv::circle(shape, {width / 2, size.height / 8}, std::max(2, width / 4), 1, cv::FILLED);
  return {shape, texture(size, 5, 8, random)};
}

void draw(cv::Mat& scene, const Thing& thing, cv::Point at, double contrast) {
  cv::Mat under = scene(cv::Rect(at, thing.size()));
  const cv::Scalar colour = cv::mean(under) + cv::Scalar::all(contrast);
  cv::Mat look = thing.texture + colour;
  look.copyTo(under, thing.shape > 0.5F);
}

cv::Mat Camera::picture(const cv::Mat& scene) {
  const double each = sigma_ / std::sqrt(2.0);
  cv::Mat noise(scene.size(), CV_32FC3);
  cv::Mat common(scene.size(), CV_32F);
  random_.fill(noise, cv::RNG::NORMAL, 0, each);
  random_.fill(common, cv::RNG::NORMAL, 0, each);
  cv::Mat sum;
  cv::cvtColor(common, sum, cv::COLOR_GRAY2BGR);
  sum += noise;
  sum += scene;
  cv::Mat picture;
  sum.convertTo(picture, CV_8UC3);
  return picture;
}

}  // namespace lm::test
