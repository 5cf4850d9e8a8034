// A street with people and cars: the clip in the folder LIGHTMOTION_CLIPS, or else the built-in scene.
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <opencv2/imgproc.hpp>

#include "bench/scene.h"
#include "host/source/source.h"

namespace lm::bench {
namespace {

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

Script street(cv::Size size) {
  const std::shared_ptr<host::source::Source> source = host::source::open_source(street_file());
  return {
      .next = [source, size, frame = host::source::Frame(), scaled = cv::Mat()]() mutable -> const cv::Mat* {
        if (!source->next(frame)) return nullptr;
        cv::resize(frame.image, scaled, size, 0, 0, cv::INTER_LINEAR);
        return &scaled;
      },
      .ends = true,
      .partly_moving = true};
}

}  // namespace lm::bench
