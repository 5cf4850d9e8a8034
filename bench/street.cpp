// A street with people and cars: the clip in the folder LIGHTMOTION_CLIPS, or else the built-in scene.
#include <cstdlib>
#include <filesystem>
#include <opencv2/imgproc.hpp>
#include <stdexcept>

#include "bench/scene.h"
#include "host/source/source.h"

namespace lm::bench {
namespace {

constexpr int kSkipped = 80;  // people are walking by then in either street
constexpr int kFrames = 24;

std::string street_file() {
  const char* folder = std::getenv("LIGHTMOTION_CLIPS");
  if (folder == nullptr) return "";
  const std::filesystem::path file = std::filesystem::path(folder) / "street.avi";
  return std::filesystem::exists(file) ? file.string() : "";
}

}  // namespace

std::string street_origin() {
  const std::string file = street_file();
  return file.empty() ? "the built-in street" : std::filesystem::path(file).filename().string();
}

// Forwards, then backwards, so that there is no jump where the ring closes.
Scene make_street(cv::Size size) {
  const auto source = host::source::open_source(street_file());
  Scene scene;
  host::source::Frame frame;
  for (int n = 0; n < kSkipped + kFrames; ++n) {
    if (!source->next(frame)) throw std::runtime_error("the street is too short");
    if (n < kSkipped - 1) continue;
    cv::Mat scaled;
    cv::resize(frame.image, scaled, size, 0, 0, cv::INTER_LINEAR);
    if (n < kSkipped) {
      scene.opening = scaled;
    } else {
      scene.ring.push_back(scaled);
    }
  }
  for (std::size_t n = kFrames - 1; --n > 0;) scene.ring.push_back(scene.ring[n]);
  scene.partly_moving = true;
  return scene;
}

}  // namespace lm::bench
