// `lightmotion run ... --out DIR`: analyses many files, one or several at a time.
#pragma once

#include "host/commands/archive/archive_options.h"
#include "host/commands/run/run_options.h"

namespace lm::host::commands::archive {

// `options`: for the run over each file. Processes every file without results, each in its own process; a
// failing file does not stop the others. Returns the program's exit status; throws Failure.
int run_archive(const run::RunOptions& options, const ArchiveOptions& archive);

}  // namespace lm::host::commands::archive
