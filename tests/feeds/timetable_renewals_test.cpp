#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/feeds_fixture.h"
#include "feeds/timetable_zip.h"
#include "feeds/transit_feeds.h"
#include "shared/mutex.h"

namespace linewatch {
namespace {

using testing::HasSubstr;

/// A server that is too slow for a fetch with the usual limit, and answers a patient one when told to.
class SlowTimetableServer final : public HttpFetcher {
 public:
  Outcome<HttpResponse> fetch(const HttpRequest& request) override {
    if (request.timeout <= kFetchTimeout) return failure(FailureCode::timedOut, "", "", "no answer in time");
    MutexLock lock(mutex_);
    patience_ = request;
    const std::stop_callback wake(request.stop, [this] { changed_.notify_all(); });
    while (!answer_ && !request.stop.stop_requested()) changed_.wait_for(lock, std::chrono::milliseconds(10));
    if (!answer_) return failure(FailureCode::cancelled, "", "", "it is no longer wanted");
    return *std::exchange(answer_, std::nullopt);
  }
  void give(Outcome<HttpResponse> answer) {
    const MutexLock lock(mutex_);
    answer_ = std::move(answer);
    changed_.notify_all();
  }
  /// The last patient request.
  std::optional<HttpRequest> patience() {
    const MutexLock lock(mutex_);
    return patience_;
  }

 private:
  Mutex mutex_;
  std::condition_variable_any changed_;
  std::optional<Outcome<HttpResponse>> answer_ LINEWATCH_GUARDED_BY(mutex_);
  std::optional<HttpRequest> patience_ LINEWATCH_GUARDED_BY(mutex_);
};

HttpResponse oldTimetable() { return {.body = Bytes(kTimetableZip.begin(), kTimetableZip.end())}; }

/// The same with the line M2 instead of M1.
HttpResponse newTimetable() {
  HttpResponse response = oldTimetable();
  std::string text(response.body.begin(), response.body.end());
  for (const auto& [before, after] : {std::pair<std::string, std::string>{"M1\n", "M2\n"},
                                      {"\x3A\xCF\x0F\xF2", "\xF9\x9C\x22\xD9"}}) {  // the checksum
    for (std::size_t at = text.find(before); at != std::string::npos; at = text.find(before, at))
      text.replace(at, before.size(), after);
  }
  response.body.assign(text.begin(), text.end());
  return response;
}

class TimetableRenewalsTest : public FeedsFixture {
 protected:
  std::unique_ptr<TransitFeeds> panelFeeds() {
    auto documents = std::make_shared<FeedDocuments>(
        cache(), [this] { return Date(Seconds(seconds_)); },
        [this] { return Outcome<std::shared_ptr<HttpFetcher>>(slow_); });
    documents->renewInBackground();
    return std::make_unique<TransitFeeds>([this] { return std::vector{kFeed}; }, std::move(documents),
                                          IncidentLanguage{});
  }
  static std::string lineIn(TransitFeeds& feeds) {
    const auto lines = feeds.linesOf("bus");
    return lines ? std::string((*lines)->routes().front().id) : sentenceOf(lines.error());
  }
  /// Looks lines up until the background has brought this one.
  static void waitForLine(TransitFeeds& feeds, const std::string& line) {
    while (lineIn(feeds) != line) std::this_thread::yield();
  }

  /// A clock that the background reads, too.
  std::atomic<int> seconds_ = 2000;
  const StoredFeed kFeed{"bus", "https://example.org/gtfs", "https://example.org/alerts"};
  std::shared_ptr<SlowTimetableServer> slow_ = std::make_shared<SlowTimetableServer>();
};

TEST_F(TimetableRenewalsTest, ARunningProgramUsesTheKeptTimetableUntilTheNewOneIsThere) {
  server_->answer = oldTimetable();
  ASSERT_TRUE(documents(cache())->lineIndexOf(kFeed));
  const auto feeds = panelFeeds();
  EXPECT_EQ(lineIn(*feeds), "M1");
  EXPECT_FALSE(slow_->patience());
  seconds_ += 86400;
  EXPECT_EQ(lineIn(*feeds), "M1");
  slow_->give(newTimetable());
  waitForLine(*feeds, "M2");
  EXPECT_EQ(slow_->patience()->timeout, kLongestFetch);
  EXPECT_EQ(slow_->patience()->idleTimeout, kFetchTimeout);
  EXPECT_EQ(lineIn(*panelFeeds()), "M2") << "it is in the cache";
}

TEST_F(TimetableRenewalsTest, AMissingTimetableThatIsTooSlowGoesOnInTheBackground) {
  const auto feeds = panelFeeds();
  EXPECT_THAT(lineIn(*feeds), HasSubstr("no answer in time"));
  seconds_ += 60;
  EXPECT_THAT(lineIn(*feeds), HasSubstr("it is still being fetched"));
  slow_->give(oldTimetable());
  seconds_ += 60;
  while (lineIn(*feeds) != "M1") seconds_ += 60;
}

TEST_F(TimetableRenewalsTest, AFailedRenewalIsTriedAgainLater) {
  server_->answer = oldTimetable();
  ASSERT_TRUE(documents(cache())->lineIndexOf(kFeed));
  seconds_ += 86400;
  const auto feeds = panelFeeds();
  slow_->give(failure(FailureCode::unreachable, "", "", "connection refused"));
  EXPECT_EQ(lineIn(*feeds), "M1");
  slow_->give(newTimetable());
  while (lineIn(*feeds) == "M1") seconds_ += 1;
  EXPECT_EQ(lineIn(*feeds), "M2");
}

}  // namespace
}  // namespace linewatch
