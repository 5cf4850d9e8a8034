// Regions at random, for the calls that take them.
#pragma once

#include <string>
#include <vector>

#include "tests/system/orders.h"

namespace orders {

// Up to three regions, each with the given chance; where most calls have some, often the whole frame.
std::vector<plain::RegionText> anyRegions(Dice& dice, int percent);
std::string written(const std::vector<plain::RegionText>& regions);
std::vector<polygon> polygonsOf(const std::vector<plain::Region>& regions);

}  // namespace orders
