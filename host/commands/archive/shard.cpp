#include "host/commands/archive/shard.h"

#include <charconv>
#include <cstdlib>
#include <optional>

#include "host/base/failure.h"

namespace lm::host::commands::archive {
namespace {

std::optional<std::size_t> number(const std::string& text) {
  std::size_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::size_t from_slurm(const char* name) {
  const char* text = std::getenv(name);
  const std::optional<std::size_t> value = number(text != nullptr ? text : "");
  if (!value) throw base::Failure(base::kRefused, std::string("--shard slurm: ") + name + " is not a number");
  return *value;
}

// The array may start at any number and have a step (--array=10-40:10).
Shard slurm_shard() {
  const std::size_t id = from_slurm("SLURM_ARRAY_TASK_ID");
  const std::size_t count = from_slurm("SLURM_ARRAY_TASK_COUNT");
  const std::size_t first = from_slurm("SLURM_ARRAY_TASK_MIN");
  const std::size_t step = from_slurm("SLURM_ARRAY_TASK_STEP");
  const std::size_t index = step > 0 && id >= first ? (id - first) / step : count;
  if (index >= count || (id - first) % step != 0) {
    throw base::Failure(base::kRefused,
                        "--shard slurm: the job array has gaps, so some files would not be processed");
  }
  return {index, count};
}

}  // namespace

Shard parse_shard(const std::string& text) {
  if (text.empty()) return {};
  if (text == "slurm") return slurm_shard();
  const std::size_t slash = text.find('/');
  const std::optional<std::size_t> index = number(text.substr(0, slash));
  const std::optional<std::size_t> count = number(slash < text.size() ? text.substr(slash + 1) : "");
  if (!index || !count || *index < 1 || *index > *count) {
    throw base::Failure(base::kRefused, "--shard must be I/N with I from 1 to N, or slurm, not " + text);
  }
  return {*index - 1, *count};
}

}  // namespace lm::host::commands::archive
