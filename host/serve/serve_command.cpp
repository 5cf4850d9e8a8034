#include "host/serve/serve_command.h"

#include <poll.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

#include "host/document.h"
#include "host/failure.h"
#include "host/interrupt.h"
#include "host/live/live_options.h"
#include "host/plugin.h"
#include "host/serve/api.h"
#include "host/serve/web_server.h"
#include "host/serve/worker.h"
#include "host/whole_file.h"

extern "C" {
#include <libavutil/log.h>
}

namespace lm::host {
namespace {

constexpr int kGlance = 100;  // milliseconds

struct ServeOptions {
  PlayerPlan plan;
  std::string config;
  Gate gate{.port = 8420};
};

// A file that is not there yet is made when the page saves.
std::string first_document(const std::string& config) {
  std::error_code error;
  if (config.empty() || !std::filesystem::exists(config, error)) return default_document();
  return required_text(config);
}

std::unique_ptr<Player> begin(const ServeOptions& options) {
  const std::string document = first_document(options.config);
  try {
    return std::make_unique<Player>(options.plan, document);
  } catch (const Failure& failure) {
    if (failure.status() != kRefused || options.config.empty()) throw;
    throw Failure(kRefused, options.config + ": " + failure.what());
  }
}

// Ctrl-C is the way to end it, so that is no failure.
int serve(ServeOptions options) {
  av_log_set_level(AV_LOG_QUIET);
  find_plugin(options.plan.detector.plugin, program_folder());
  if (!is_loopback(options.gate.host) && options.gate.token.empty()) options.gate.token = random_token();
  const std::unique_ptr<Player> player = begin(options);
  Api api(*player, options.plan, options.config);
  WebServer server(api, options.gate);
  std::printf("lightmotion: %s\n", server.address().c_str());
  std::fflush(stdout);
  std::thread answering([&server] { server.work(); });
  while (interrupted() == 0) poll(nullptr, 0, kGlance);
  player->stop();
  server.stop();
  answering.join();
  return kDone;
}

}  // namespace

void add_serve_command(CLI::App& app, std::function<int()>& chosen) {
  const auto options = std::make_shared<ServeOptions>();
  CLI::App* serving = app.add_subcommand("serve", "See and tune the detection in a browser");
  const auto add = [serving](const char* name, std::string& value, const char* kind, const char* help) {
    return serving->add_option(name, value, help)->type_name(kind);
  };
  add("SOURCE", options->plan.source, "",
      "Video file, stream address or camera; without it, the built-in scene");
  add("-c,--config", options->config, "FILE", "Configuration document to begin with and to save to");
  add("--host", options->gate.host, "ADDRESS", "Where to be reached (127.0.0.1: from this computer only)");
  serving->add_option("--port", options->gate.port, "0: any that is free (8420)")
      ->type_name("N")
      ->check(CLI::Range(0, 65535));
  add("--token", options->gate.token, "TEXT",
      "What has to be known to be let in; made up by itself where others\ncan reach the page");
  add("--plugin", options->plan.detector.plugin, "PATH", "The plug-in, when it is not in its usual place");
  add_live_options(*serving, options->plan.reading);
  serving->callback([options, &chosen] { chosen = [options] { return serve(*options); }; });

  CLI::App* detecting = app.add_subcommand("detect", "")->group("");
  const auto plugin = std::make_shared<std::string>();
  detecting->add_option("--plugin", *plugin);
  detecting->callback([plugin, &chosen] { chosen = [plugin] { return work_as_detector(*plugin); }; });
}

}  // namespace lm::host
