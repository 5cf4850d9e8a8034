#include "host/commands/serve/web_server.h"

#include <httplib.h>

#include <cerrno>
#include <exception>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "host/base/failure.h"
#include "host/commands/serve/page_files.h"

namespace lm::host::commands::serve {
namespace {

using httplib::Request;
using httplib::Response;
using Routing = httplib::Server::HandlerResponse;

constexpr std::size_t kLongestBody = std::size_t{1} << 20;
constexpr int kSlowest = 5;  // time limit for a part of a request, in seconds
// Enough for all viewers that wait for pictures, and some for other requests.
constexpr std::size_t kThreads = 2 * Viewers::kMost * Viewers::kMostWaiting;

constexpr const char* kPolicy =
    "default-src 'self'; img-src 'self' blob:; object-src 'none'; base-uri 'none'; form-action 'none'; "
    "frame-ancestors 'none'";

const char* type_of(std::string_view name) {
  const std::string_view ending = name.substr(name.rfind('.') + 1);
  if (ending == "html") return "text/html; charset=utf-8";
  if (ending == "css") return "text/css; charset=utf-8";
  if (ending == "svg") return "image/svg+xml";
  return "text/javascript; charset=utf-8";
}

std::optional<Reply> page_reply(const std::string& path) {
  const std::string name = path == "/" ? "index.html" : path.substr(1);
  for (const PageFile& file : page_files()) {
    if (file.name == name) return Reply{.type = type_of(file.name), .body = std::string(file.text)};
  }
  return std::nullopt;
}

Credentials shown_by(const Request& request) {
  return {request.get_header_value("Host"), request.get_header_value("Origin"),
          request.get_header_value("Sec-Fetch-Site"), request.get_header_value("Authorization")};
}

void answer(Response& response, const Reply& reply) {
  response.status = reply.status;
  for (const auto& [name, value] : reply.headers) response.set_header(name, value);
  if (reply.status != 204) response.set_content(reply.body, reply.type);
}

Query query_of(const Request& request, std::string body = "") {
  return {{request.params.begin(), request.params.end()}, std::move(body)};
}

Reply handled(const Api::Handler& handler, const Query& query) {
  try {
    return handler(query);
  } catch (const base::Failure& failure) {
    return error_reply(failure.status() == base::kRefused ? 422 : 500, failure.what());
  }
}

struct Body {
  std::string text{};
  bool whole = false;
  bool too_long = false;
};

// The decompressed size is limited, because a small body can decompress to a very large one.
Body body_of(const httplib::ContentReader& read) {
  Body body;
  body.whole = read([&body](const char* data, std::size_t length) {
    body.text.append(data, length);
    body.too_long = body.text.size() > kLongestBody;
    return !body.too_long;
  });
  return body;
}

std::string reason_of(int status) {
  switch (status) {
    case 413:
      return "the request body exceeds " + std::to_string(kLongestBody) + " bytes";
    case 414:
      return "the request address is too long";
    default:
      return "malformed request";
  }
}

void limit(httplib::Server& server) {
  server.set_payload_max_length(kLongestBody);
  server.set_read_timeout(kSlowest);
  server.set_write_timeout(kSlowest);
  server.set_keep_alive_timeout(1);
  // One request per connection: the body of a refused request cannot be read as the next request.
  server.set_keep_alive_max_count(1);
  server.set_tcp_nodelay(true);
  server.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
  // Without the library's SO_REUSEPORT, which would share the port with another process.
  server.set_socket_options([](int socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  });
  server.set_default_headers({{"Content-Security-Policy", kPolicy},
                              {"X-Content-Type-Options", "nosniff"},
                              {"Referrer-Policy", "no-referrer"},
                              {"Cross-Origin-Resource-Policy", "same-origin"},
                              {"Cache-Control", "no-store"}});
}

void take_address(httplib::Server& server, Gate& gate) {
  errno = 0;
  const bool any = gate.port == 0;
  if (any) gate.port = server.bind_to_any_port(gate.host);
  if (any ? gate.port > 0 : server.bind_to_port(gate.host, gate.port)) return;
  const std::string cause = errno != 0 ? std::generic_category().message(errno) : "no such address";
  throw base::Failure(base::kTrouble, "cannot listen on " + authority(gate.host, gate.port) + ": " + cause);
}

}  // namespace

WebServer::WebServer(Api& api, Gate gate)
    : api_(api), gate_(std::move(gate)), server_(std::make_unique<httplib::Server>()) {
  limit(*server_);
  server_->set_pre_routing_handler([this](const Request& request, Response& response) {
    const std::optional<Reply> reply = at_once(request);
    if (!reply) return Routing::Unhandled;
    answer(response, *reply);
    return Routing::Handled;
  });
  for (const auto& post : api_.posts()) {
    server_->Post(post.first, [&handler = post.second](const Request& request, Response& response,
                                                       const httplib::ContentReader& read) {
      Body body = body_of(read);
      if (body.too_long) response.status = 413;
      if (body.whole) answer(response, handled(handler, query_of(request, std::move(body.text))));
    });
  }
  server_->set_error_handler([](const Request&, Response& response) {
    if (response.body.empty()) answer(response, error_reply(response.status, reason_of(response.status)));
  });
  server_->set_exception_handler([](const Request&, Response& response, const std::exception_ptr&) {
    answer(response, error_reply(500, "internal error"));
  });
  take_address(*server_, gate_);
}

WebServer::~WebServer() { stop(); }

// The answer to requests without a body; none for requests with one.
std::optional<Reply> WebServer::at_once(const Request& request) const {
  const bool data = request.path.starts_with("/api/");
  if (const auto turned = turned_away(gate_, shown_by(request), data)) {
    return error_reply(turned->status, turned->reason);
  }
  if (!request.ranges.empty()) return error_reply(416, "range requests are not supported");
  if (request.method == "POST" && api_.posts().count(request.path) != 0) return std::nullopt;
  if (request.method != "GET" && request.method != "HEAD") {
    return error_reply(405, request.method + " is not allowed for " + request.path);
  }
  if (const auto get = api_.gets().find(request.path); get != api_.gets().end()) {
    return handled(get->second, query_of(request));
  }
  if (std::optional<Reply> page = page_reply(request.path)) return page;
  return error_reply(404, "not found: " + request.path);
}

std::string WebServer::address() const {
  const std::string base = "http://" + authority(gate_.host, gate_.port) + "/";
  return gate_.token.empty() ? base : base + "#token=" + gate_.token;
}

void WebServer::work() {
  working_ = true;
  if (!stopped_) server_->listen_after_bind();
  working_ = false;
}

// The library's stop has no effect while its server is starting.
void WebServer::stop() {
  stopped_ = true;
  while (working_ && !server_->is_running()) std::this_thread::yield();
  server_->stop();
}

}  // namespace lm::host::commands::serve
