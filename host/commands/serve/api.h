// The requests of the page, independent of HTTP.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/commands/serve/player.h"
#include "host/commands/serve/still.h"
#include "host/commands/serve/viewers.h"
#include "host/detector/check/check.h"

namespace lm::host::commands::serve {

struct Reply {
  int status = 200;
  std::string type = "application/json";
  std::string body{};
  std::vector<std::pair<std::string, std::string>> headers{};
};

// {"error":text}
Reply error_reply(int status, const std::string& text);

struct Query {
  std::map<std::string, std::string> parameters{};
  std::string body{};
};

class Api {
 public:
  // `config`: the file that the page may write; empty for none.
  Api(Player& player, const PlayerPlan& plan, std::string config);

  using Handler = std::function<Reply(const Query&)>;
  // By path, such as "/api/state".
  const std::map<std::string, Handler>& gets() const { return gets_; }
  const std::map<std::string, Handler>& posts() const { return posts_; }

 private:
  Reply state();
  Reply frame(const Query& query);
  Reply nothing_new() const;
  Reply still(const Query& query);
  Reply events() const;
  Reply document() const;
  Reply play(const Query& query);
  Reply check(const Query& query) const;
  Reply apply(const Query& query);
  Reply compare(const Query& query);
  Reply save(const Query& query);

  // How the plug-in will interpret a document at the size of the analysed frames.
  detector::check::Verdict verdict(const std::string& document) const;

  Player& player_;
  const source::live::Scale scale_;
  const std::string config_;
  Still still_;
  Viewers viewers_;
  std::map<std::string, Handler> gets_, posts_;
};

}  // namespace lm::host::commands::serve
