#include "host/outputs/report/output_names.h"

#include <array>
#include <cstdio>

#include "host/base/time_text.h"

namespace lm::host::outputs::report {
namespace {

using namespace std::chrono;

std::string since_start(microseconds time) {
  const long long thousandths = duration_cast<milliseconds>(time).count();
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%02lldh%02lldm%02lld.%03llds", thousandths / 3'600'000,
                thousandths / 60'000 % 60, thousandths / 1000 % 60, thousandths % 1000);
  return text.data();
}

}  // namespace

const char* kind_name(events::EventKind kind) {
  return kind == events::EventKind::kLight ? "light" : "motion";
}

std::string event_stem(const events::Event& event) {
  const std::string time = event.wall_start ? base::file_time(*event.wall_start) : since_start(event.start);
  // Events may start at the same time.
  return time + "-" + event.id.substr(event.id.rfind('-') + 1) + "-" + kind_name(event.kind);
}

}  // namespace lm::host::outputs::report
