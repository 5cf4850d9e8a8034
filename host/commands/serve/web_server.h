// The page and what it asks for, over HTTP.
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
  // Takes the address; port 0 for any that is free. Throws Failure when it cannot be had.
  WebServer(Api& api, Gate gate);
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  // What to open in a browser.
  std::string address() const;
  int port() const { return gate_.port; }

  // Answers requests until `stop` is called, from another thread.
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
