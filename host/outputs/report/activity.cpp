#include "host/outputs/report/activity.h"

#include <algorithm>

namespace lm::host::outputs::report {

void Activity::add(std::chrono::microseconds time, events::EventKind kind, double share) {
  while (static_cast<std::size_t>(time / span_) >= kMostSpans) halve();
  std::vector<double>& shares = kind == events::EventKind::kLight ? light_ : motion_;
  const auto place = static_cast<std::size_t>(time / span_);
  if (place >= shares.size()) shares.resize(place + 1);
  shares[place] = std::max(shares[place], share);
}

void Activity::halve() {
  span_ *= 2;
  for (std::vector<double>* shares : {&motion_, &light_}) {
    if (shares->size() % 2 != 0) shares->push_back(0);
    for (std::size_t i = 0; i < shares->size() / 2; ++i) {
      (*shares)[i] = std::max((*shares)[2 * i], (*shares)[2 * i + 1]);
    }
    shares->resize(shares->size() / 2);
  }
}

const std::vector<double>& Activity::shares(events::EventKind kind) const {
  return kind == events::EventKind::kLight ? light_ : motion_;
}

}  // namespace lm::host::outputs::report
