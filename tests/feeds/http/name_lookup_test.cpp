// Fetches from hosts whose names are looked up slowly or not at all. This file's getaddrinfo takes the place
// of the system's in the whole test program, libcurl included.

#include <chrono>
#include <filesystem>
#include <semaphore>
#include <string_view>
#include <thread>

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netdb.h>

#include "feeds/http/http_fetcher.h"
#include "shared/failure.h"

namespace {

constexpr std::string_view kSlowHost = "slow.invalid";
constexpr std::string_view kUnknownHost = "unknown.invalid";
// Longer than any fetch here: one that waits for the lookup fails its test.
constexpr std::chrono::seconds kLongestLookup{10};

std::counting_semaphore<> lookupsStarted{0};
std::counting_semaphore<> lookupsMayEnd{0};

}  // namespace

extern "C" int getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result) {
  const std::string_view host = node ? node : "";
  if (host == kUnknownHost) return EAI_NONAME;
  if (host == kSlowHost) {
    lookupsStarted.release();
    (void)lookupsMayEnd.try_acquire_for(kLongestLookup);
    return EAI_AGAIN;
  }
  static const auto next = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
  return next(node, service, hints, result);
}

namespace linewatch {
namespace {

std::shared_ptr<HttpFetcher> curlFetcher() {
  auto fetcher = loadHttpFetcher();
  return fetcher ? *fetcher : nullptr;
}

std::ptrdiff_t threadCount() {
  using Entries = std::filesystem::directory_iterator;
  return std::distance(Entries("/proc/self/task"), Entries());
}

TEST(NameLookup, ThatFailsSaysSo) {
  const auto response = curlFetcher()->fetch({.url = "http://" + std::string(kUnknownHost) + "/?key=secret"});
  ASSERT_FALSE(response);
  EXPECT_EQ(failureCodeOf(response.error()), FailureCode::unreachable);
  EXPECT_EQ(sentenceOf(response.error()), "it cannot be fetched: no address is found for the host");
}

TEST(NameLookup, DoesNotDelayAFinishedFetch) {
  const std::string url = "http://" + std::string(kSlowHost) + "/";
  const std::ptrdiff_t threads = threadCount();
  const auto late = curlFetcher()->fetch({.url = url, .timeout = Seconds(0.1)});
  ASSERT_FALSE(late);
  EXPECT_EQ(failureCodeOf(late.error()), FailureCode::timedOut);
  ASSERT_TRUE(lookupsStarted.try_acquire());

  std::stop_source stop;
  std::thread stopping([&stop] {
    lookupsStarted.acquire();
    stop.request_stop();
  });
  const auto stopped = curlFetcher()->fetch({.url = url, .timeout = Seconds(600), .stop = stop.get_token()});
  stopping.join();
  ASSERT_FALSE(stopped);
  EXPECT_EQ(failureCodeOf(stopped.error()), FailureCode::cancelled);

  // The lookups' threads are all that is left, and end with them.
  EXPECT_EQ(threadCount(), threads + 2);
  lookupsMayEnd.release(2);
  const auto deadline = std::chrono::steady_clock::now() + kLongestLookup;
  while (threadCount() > threads && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
  EXPECT_EQ(threadCount(), threads);
}

}  // namespace
}  // namespace linewatch
