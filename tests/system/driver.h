// Runs the detector and the plain model side by side over a sequence.
#pragma once

#include <string>

#include "tests/system/sequence.h"

// How the engine cuts a frame into strips: as it does by itself, or every frame into others.
enum class Cut { usual, anywhere };

// Compares every field after every frame, and the result text. The first difference with its frame, or empty.
std::string compareOver(const Sequence& sequence, Cut cut = Cut::usual);

// Compares the result texts of the four entry points; for sequences on the document road.
std::string compareTextsOver(const Sequence& sequence);

// The branches that the model alone takes over a sequence.
plain::BranchCounts branchesTaken(const Sequence& sequence);
