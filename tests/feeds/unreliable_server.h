#pragma once

#include <functional>
#include <random>
#include <utility>

#include <gtest/gtest.h>

#include "feeds/scripted_server.h"
#include "shared/failure.h"

namespace linewatch {

/// Behaves well for a while, then fails in one of several ways for a while.
class UnreliableServer final : public HttpFetcher {
 public:
  explicit UnreliableServer(std::function<Date()> clock) : clock_(std::move(clock)) {}

  Outcome<HttpResponse> fetch(const HttpRequest& request) override {
    now_ = clock_();
    ++requests;
    EXPECT_GE(now_, retryAfter_) << "Retry-After wins over every retry";
    if (now_ >= end_) startNextMode();
    switch (mode_) {
      case Mode::well:
        return answer(static_cast<std::uint64_t>(secondsOf(now_)));
      case Mode::milliseconds:
        return answer(static_cast<std::uint64_t>(secondsOf(now_)) * 1000);
      case Mode::unchanged:
        if (request.etag.empty()) return answer(static_cast<std::uint64_t>(secondsOf(now_)));
        lastGood = now_;
        return HttpResponse{.notModified = true};
      case Mode::page:
        return HttpResponse{.body = {'<'}};
      case Mode::silent:
        return failure(FailureCode::timedOut, "", "", "timed out");
      case Mode::busy:
        break;
    }
    Error error = failure(FailureCode::unreachable, "", "", "503");
    error.info.emplace(kRetryAfterKey, 300.0);
    retryAfter_ = now_ + Seconds(300);
    return error;
  }

  Date lastGood{};
  std::size_t requests = 0;

 private:
  enum class Mode { well, milliseconds, unchanged, page, silent, busy };

  void startNextMode() {
    mode_ = static_cast<Mode>(random_() % 6);
    end_ = now_ + Seconds(static_cast<double>(60 + random_() % 3600));
  }
  HttpResponse answer(std::uint64_t timestamp) {
    lastGood = now_;
    return body({.alerts = {alertOf("1", "Works")}, .timestamp = timestamp}, "tag");
  }

  std::function<Date()> clock_;
  Date now_{};
  std::mt19937 random_{7};
  Mode mode_ = Mode::well;
  Date end_{};
  Date retryAfter_{};
};

}  // namespace linewatch
