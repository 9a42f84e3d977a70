#pragma once

#include <string>
#include <utility>
#include <vector>

#include "feeds/alerts/alerts_sketch.h"
#include "feeds/http/http_fetcher.h"

namespace linewatch {

/// A server that gives the answer it is told to and records the requests.
class ScriptedServer final : public HttpFetcher {
 public:
  Outcome<HttpResponse> fetch(const HttpRequest& request) override {
    requests.push_back(request);
    return answer;
  }

  Outcome<HttpResponse> answer = HttpResponse{};
  std::vector<HttpRequest> requests;
};

inline HttpResponse body(const FeedSketch& feed, std::string etag = {}) {
  return {.body = payloadOf(bytesOf(feed)), .etag = std::move(etag)};
}

inline AlertSketch alertOf(std::string route, std::string header) {
  return {.id = header, .selectors = {{.route = std::move(route)}}, .header = {{header, ""}}};
}

}  // namespace linewatch
