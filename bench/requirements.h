// The plug-in's performance requirements, and whether this run met them.
#pragma once

#include "bench/records.h"

namespace lm::bench {

// Prints the table and adds it to the records. Whether all were measured and met.
bool judge(Records& records);

}  // namespace lm::bench
