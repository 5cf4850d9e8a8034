#include "host/source.h"

#include "host/builtin_scene.h"
#include "host/ffmpeg_source.h"

namespace lm::host {

std::unique_ptr<Source> open_source(const std::string& name) {
  if (name.empty()) return std::make_unique<BuiltinScene>();
  return std::make_unique<FfmpegSource>(name);
}

bool is_live(const std::string& name) {
  return is_camera(name) || (name.find("://") != std::string::npos && !name.starts_with("file://"));
}

}  // namespace lm::host
