#include "host/events/listeners.h"

namespace lm::host {

std::vector<std::unique_ptr<EventListener>> make_listeners(const RunContext&) {
  std::vector<std::unique_ptr<EventListener>> listeners;
  return listeners;
}

}  // namespace lm::host
