// Random regions, for the calls that take them.
#pragma once

#include <string>
#include <vector>

#include "tests/system/orders.h"

namespace orders {

// Up to three regions, each with a chance of `percent`; above 50, the whole frame in half of the cases.
std::vector<plain::RegionText> anyRegions(Dice& dice, int percent);
std::string written(const std::vector<plain::RegionText>& regions);
std::vector<polygon> polygonsOf(const std::vector<plain::Region>& regions);

}  // namespace orders
