#include "host/source.h"

#include "host/builtin_scene.h"
#include "host/ffmpeg_source.h"
#include "host/live/live_source.h"

namespace lm::host {

std::unique_ptr<Source> open_source(const std::string& name, const Reading& reading,
                                    const std::stop_source& stop) {
  if (name.empty()) return std::make_unique<BuiltinScene>(reading.fps);
  auto first = std::make_unique<FfmpegSource>(name, reading, cv::Size(), stop.get_token());
  if (!first->info().live) return first;
  const cv::Size size = first->info().size;
  const auto connect = [=] { return std::make_unique<FfmpegSource>(name, reading, size, stop.get_token()); };
  return std::make_unique<LiveSource>(std::move(first), connect, reading.patience, stop);
}

bool is_live(const std::string& name) {
  return is_camera(name) || (name.find("://") != std::string::npos && !name.starts_with("file://"));
}

}  // namespace lm::host
