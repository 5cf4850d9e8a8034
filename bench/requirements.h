// What the plug-in promises about its speed, and whether this run kept it.
#pragma once

#include "bench/records.h"

namespace lm::bench {

// Prints the table and adds it to the records.
void judge(Records& records);

}  // namespace lm::bench
