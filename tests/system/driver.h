// Runs the detector and the plain model side by side over a sequence.
#pragma once

#include <functional>
#include <string>

#include "plugin/detector.h"
#include "tests/system/sequence.h"

// The document that configures a sequence, for frames of so many channels.
std::string documentOf(const Sequence& sequence, int channels);

// Compares every field and the result text after every frame, then calls `after`. Returns the first
// difference and its frame, or an empty string.
std::string compareOver(
    const Sequence& sequence,
    const std::function<void(const lightMotion&)>& after = [](const lightMotion&) {});

// Compares the result texts of the four entry points; for sequences configured by a document.
std::string compareTextsOver(const Sequence& sequence);

// Runs the model alone: how often it takes each branch.
plain::BranchCounts branchesTaken(const Sequence& sequence);
