#include "host/commands/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>

#include "host/base/help_format.h"
#include "host/base/shown_address.h"
#include "host/commands/check_command.h"
#include "host/commands/presets_command.h"
#include "host/commands/run_command.h"
#include "host/commands/serve/serve_command.h"
#include "host/commands/tune/tune_command.h"

namespace lm::host::commands {
namespace {

constexpr const char* kFooter = R"(Examples:
  lightmotion run                                    try the built-in scene
  lightmotion run street.mp4 --report street.html    a page with every event
  lightmotion serve street.mp4                       watch and configure

"lightmotion COMMAND --help" shows the options and more examples of a command.
)";

bool is_command(const CLI::App& app, const std::string& name) {
  return !app.get_subcommands([&name](const CLI::App* command) { return command->get_name() == name; })
              .empty();
}

bool looks_like_source(const std::string& text) {
  std::error_code ignored;
  return text.find("://") != std::string::npos || std::filesystem::exists(text, ignored);
}

// Empty if the command line begins with a command; otherwise what is wrong.
std::string command_fault(const CLI::App& app, const std::vector<std::string>& arguments) {
  if (arguments.empty()) return "no command given";
  const std::string& first = arguments.front();
  if (first.starts_with('-') || is_command(app, first)) return "";
  const std::string fault = "unknown command \"" + first + "\"";
  return looks_like_source(first) ? fault + "; did you mean \"lightmotion run " + first + "\"?" : fault;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

std::string cause(const CLI::App& app, const CLI::ParseError& error) {
  std::string text = error.what();
  if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr)
    return replaced(text, " excludes ", " cannot be combined with ");
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
    return replaced(text, ": 1 required ", ": ");
  const bool unexpected =
      dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr || app.get_subcommands().empty();
  const std::vector<std::string> extra = app.remaining(true);
  if (!unexpected || extra.empty()) return text;
  return (extra.front().starts_with('-') ? "unknown option " : "unexpected argument ") + extra.front();
}

Command refusal(const CLI::App& app, const std::vector<std::string>& arguments, const std::string& fault) {
  const std::string command =
      !arguments.empty() && is_command(app, arguments.front()) ? " " + arguments.front() : "";
  const std::string shown = base::one_line(base::with_shown_addresses(fault, arguments));
  return {{}, base::kRefused, "lightmotion: " + shown + " (see lightmotion" + command + " --help)\n"};
}

}  // namespace

Command parse_command_line(const std::vector<std::string>& arguments) {
  CLI::App app("Finds motion in videos and camera streams, and draws boxes around what moves.",
               "lightmotion");
  app.formatter(base::help_format());
  app.set_help_flag("-h,--help", "Print help and exit");
  app.set_version_flag("--version", "lightmotion " LIGHTMOTION_PROGRAM_VERSION, "Print the version and exit");
  app.require_subcommand(1);
  app.footer(kFooter);
  std::function<int()> work;
  add_run_command(app, work);
  serve::add_serve_command(app, work);
  tune::add_tune_command(app, work);
  add_check_command(app, work);
  add_presets_command(app, work);
  for (CLI::App* command : app.get_subcommands({}))
    command->group(command->get_group().empty() ? "" : "Commands");
  if (const std::string fault = command_fault(app, arguments); !fault.empty())
    return refusal(app, arguments, fault);
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::CallForHelp&) {
    return {{}, base::kDone, app.help()};
  } catch (const CLI::CallForVersion& version) {
    return {{}, base::kDone, std::string(version.what()) + "\n"};
  } catch (const CLI::ParseError& error) {
    return refusal(app, arguments, cause(app, error));
  }
  return {work};
}

}  // namespace lm::host::commands
