#include "host/commands/serve/serve_command.h"

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

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/number_option.h"
#include "host/base/whole_file.h"
#include "host/commands/serve/api.h"
#include "host/commands/serve/web_server.h"
#include "host/commands/serve/worker.h"
#include "host/detector/document.h"
#include "host/source/live/live_options.h"

extern "C" {
#include <libavutil/log.h>
}

namespace lm::host::commands::serve {
namespace {

constexpr int kGlance = 100;  // milliseconds

constexpr const char* kFooter = R"(Examples:
  lightmotion serve                                  the built-in scene
  lightmotion serve street.mp4 --config street.json  draw regions and save them
  lightmotion serve rtsp://192.168.1.20/main         watch a network camera
  lightmotion serve street.mp4 --host 0.0.0.0        open to other computers

Exit status:
  0  stopped by Ctrl-C
  1  the source cannot be opened, or the address cannot be listened on
  2  invalid command line or configuration, or no usable plug-in
)";

struct ServeOptions {
  PlayerPlan plan;
  std::string config;
  Gate gate{.port = 8420};
};

// A file that does not exist yet is created when the page saves.
std::string first_document(const ServeOptions& options) {
  std::error_code error;
  if (options.config.empty() || !std::filesystem::exists(options.config, error))
    return detector::default_document(options.plan.detector.plugin).text;
  return base::required_text(options.config);
}

std::unique_ptr<Player> begin(const ServeOptions& options) {
  const std::string document = first_document(options);
  try {
    return std::make_unique<Player>(options.plan, document);
  } catch (const base::Failure& failure) {
    if (failure.status() != base::kRefused || options.config.empty()) throw;
    throw base::Failure(base::kRefused, options.config + ": " + failure.what());
  }
}

// Ctrl-C is the normal way to end it, so the status is 0.
int serve(ServeOptions options) {
  av_log_set_level(AV_LOG_QUIET);
  if (!is_loopback(options.gate.host) && options.gate.token.empty()) options.gate.token = random_token();
  const std::unique_ptr<Player> player = begin(options);
  Api api(*player, options.plan, options.config);
  WebServer server(api, options.gate);
  std::printf("lightmotion: %s\n", server.address().c_str());
  std::fflush(stdout);
  std::thread answering([&server] { server.work(); });
  while (base::interrupted() == 0) poll(nullptr, 0, kGlance);
  player->stop();
  server.stop();
  answering.join();
  return base::kDone;
}

}  // namespace

void add_serve_command(CLI::App& app, std::function<int()>& chosen) {
  const auto options = std::make_shared<ServeOptions>();
  CLI::App* serving = app.add_subcommand("serve", "Watch and configure detection in a browser");
  const auto add = [serving](const char* name, std::string& value, const char* kind, const char* help) {
    return serving->add_option(name, value, help)->type_name(kind);
  };
  add("SOURCE", options->plan.source, "",
      "Video file, stream address or camera (/dev/video0); default: the built-in scene");
  add("-c,--config", options->config, "FILE",
      "Configuration (JSON) to start with and to save to; need not exist yet");
  add("--host", options->gate.host, "ADDRESS",
      "Address to listen on (default 127.0.0.1: this computer only; 0.0.0.0: any computer)");
  base::add_number(*serving, {"--port", "N", "Port; 0 picks a free one", {0, 65535, "", true}, "8420"},
                   [options](double port) { options->gate.port = static_cast<int>(port); });
  add("--token", options->gate.token, "TEXT", "Access token (default: generated when not on loopback)");
  add("--plugin", options->plan.detector.plugin, "PATH",
      "Use this plug-in by its entry points instead of the library");
  source::live::add_live_options(*serving, options->plan.reading);
  serving->footer(kFooter);
  serving->callback([options, &chosen] { chosen = [options] { return serve(*options); }; });

  CLI::App* detecting = app.add_subcommand("detect", "")->group("");
  const auto plugin = std::make_shared<std::string>();
  detecting->add_option("--plugin", *plugin);
  detecting->callback([plugin, &chosen] { chosen = [plugin] { return work_as_detector(*plugin); }; });
}

}  // namespace lm::host::commands::serve
