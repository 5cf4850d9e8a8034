#include "host/source/source.h"

#include "host/source/ffmpeg_source.h"
#include "host/source/live/live_source.h"
#include "host/source/scene/builtin_scene.h"

namespace lm::host::source {

std::unique_ptr<Source> open_source(const std::string& name, const Reading& reading,
                                    const std::stop_source& stop) {
  if (name.empty()) return std::make_unique<scene::BuiltinScene>(reading.fps);
  auto first = std::make_unique<FfmpegSource>(name, reading, cv::Size(), stop.get_token());
  if (!first->info().live) return first;
  const cv::Size size = first->info().size;
  const auto connect = [=] { return std::make_unique<FfmpegSource>(name, reading, size, stop.get_token()); };
  return std::make_unique<live::LiveSource>(std::move(first), connect, reading, stop);
}

bool is_live(const std::string& name) {
  return is_camera(name) || (name.find("://") != std::string::npos && !name.starts_with("file://"));
}

}  // namespace lm::host::source
