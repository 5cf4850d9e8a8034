// Generated pictures with truth: a textured ground, things on it, and noise.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>

namespace lm::test {

// A ground with texture of several sizes and edges, CV_32FC3.
cv::Mat ground(cv::Size size, std::uint64_t seed);

// Something with a texture of its own.
struct Thing {
  cv::Mat shape;    // CV_32F, 1 inside
  cv::Mat texture;  // CV_32FC3, around 0
  cv::Size size() const { return shape.size(); }
};
Thing car(cv::Size size, std::uint64_t seed);
Thing person(int width, std::uint64_t seed);

// Draws a thing that is brighter than the ground under it by so many grey levels.
void draw(cv::Mat& scene, const Thing& thing, cv::Point at, double contrast);

// A camera's picture of a scene: Gaussian noise, half of it the same in all channels, rounded to 8 bits.
class Camera {
 public:
  Camera(double sigma, std::uint64_t seed) : sigma_(sigma), random_(seed) {}
  cv::Mat picture(const cv::Mat& scene);

 private:
  double sigma_;
  cv::RNG random_;
};

}  // namespace lm::test
