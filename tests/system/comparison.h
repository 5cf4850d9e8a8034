// Field-by-field comparison of a detector with the plain model.
#pragma once

#include <string>

#include "plugin/detector.h"
#include "tests/plain/model.h"

// The first field that differs: its name, the element, the engine's value and the model's. Empty if all are
// equal.
std::string firstDifference(const lightMotion& detector, const plain::Model& model);
