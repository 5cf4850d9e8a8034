// Runs the detector and the plain model side by side over a sequence.
#pragma once

#include <string>

#include "tests/system/sequence.h"

// How the engine divides a frame into strips: as usual, or differently for every frame.
enum class Cut { usual, anywhere };

// Compares every field after every frame, and the result text. The first difference with its frame, or empty.
std::string compareOver(const Sequence& sequence, Cut cut = Cut::usual);

// Compares the result texts of the four entry points; for sequences configured by a document.
std::string compareTextsOver(const Sequence& sequence);

// The branches that the model alone takes over a sequence.
plain::BranchCounts branchesTaken(const Sequence& sequence);
