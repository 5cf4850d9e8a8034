// An event as the text of a message.
#pragma once

#include <string>

#include "host/events/event.h"

namespace lm::host::mqtt {

std::string payload_of(const Event& event);

}  // namespace lm::host::mqtt
