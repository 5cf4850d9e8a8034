#include "host/commands/presets_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>

#include "host/base/failure.h"
#include "host/detector/presets/presets.h"

namespace lm::host::commands {
namespace {

constexpr const char* kPresetsFooter = R"(Examples:
  lightmotion presets                                list all presets
  lightmotion presets auto > own.json                a preset to edit
  lightmotion run street.mp4 --preset street         a preset as it is

Exit status:
  0  success
  1  standard output cannot be written
  2  invalid command line
)";

std::string list() {
  std::size_t widest = 0;
  for (const detector::presets::Preset& preset : detector::presets::all())
    widest = std::max(widest, preset.name.size());
  std::string lines;
  for (const detector::presets::Preset& preset : detector::presets::all()) {
    lines.append(preset.name).append(widest + 2 - preset.name.size(), ' ').append(preset.about).append("\n");
  }
  return lines;
}

int print(const std::string& text) {
  const bool taken = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
  if (!taken) throw base::Failure(base::kTrouble, "standard output cannot be written");
  return base::kDone;
}

}  // namespace

void add_presets_command(CLI::App& app, std::function<int()>& chosen) {
  CLI::App* command = app.add_subcommand("presets", "List or print the configurations of the program");
  command->footer(kPresetsFooter);
  const auto name = std::make_shared<std::string>();
  command->add_option("NAME", *name, "Print this preset's configuration (default: list all presets)")
      ->type_name("")
      ->check(detector::presets::is_preset);
  command->callback([name, &chosen] {
    chosen = [name] {
      return print(name->empty() ? list() : detector::presets::find_preset(*name)->document);
    };
  });
}

}  // namespace lm::host::commands
