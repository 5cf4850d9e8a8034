// The HTTP server of the page and its requests.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "host/commands/serve/api.h"
#include "host/commands/serve/guard.h"

namespace httplib {
class Server;
struct Request;
}  // namespace httplib

namespace lm::host::commands::serve {

class WebServer {
 public:
  // Binds the address; port 0 picks a free one. Throws Failure if that fails.
  WebServer(Api& api, Gate gate);
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  // The address to open in a browser.
  std::string address() const;
  int port() const { return gate_.port; }

  // Answers requests until another thread calls `stop`.
  void work();
  void stop();

 private:
  std::optional<Reply> at_once(const httplib::Request& request) const;

  Api& api_;
  Gate gate_;
  std::unique_ptr<httplib::Server> server_;
  std::atomic<bool> working_ = false;
  std::atomic<bool> stopped_ = false;
};

}  // namespace lm::host::commands::serve
