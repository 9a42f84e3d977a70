#include "feeds/catalogue/feed_adding.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <stop_token>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/feeds_fixture.h"
#include "feeds/timetable_zip.h"
#include "shared/mutex.h"
#include "storage/state_database.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Answers by address, and hangs at other ones until the request is stopped.
class AgencyServer final : public HttpFetcher {
 public:
  Outcome<HttpResponse> fetch(const HttpRequest& request) override {
    MutexLock lock(mutex_);
    addresses_.push_back(request.url);
    asked_.notify_all();
    const auto answer = answers_.find(request.url);
    if (answer != answers_.end()) {
      if (answer->second && request.progress) request.progress(answer->second->body.size(), 1000);
      return answer->second;
    }
    const std::stop_callback wake(request.stop, [this] { asked_.notify_all(); });
    while (!request.stop.stop_requested()) asked_.wait_for(lock, std::chrono::milliseconds(10));
    return failure(FailureCode::cancelled, "", "", "it is no longer wanted");
  }
  void give(const std::string& address, Outcome<HttpResponse> answer) {
    const MutexLock lock(mutex_);
    answers_.insert_or_assign(address, std::move(answer));
  }
  void waitForRequest(const std::string& address) {
    MutexLock lock(mutex_);
    while (std::ranges::find(addresses_, address) == addresses_.end()) asked_.wait(lock);
  }
  std::vector<std::string> addresses() {
    const MutexLock lock(mutex_);
    return std::exchange(addresses_, {});
  }

 private:
  Mutex mutex_;
  std::condition_variable_any asked_;
  std::map<std::string, Outcome<HttpResponse>> answers_ LINEWATCH_GUARDED_BY(mutex_);
  std::vector<std::string> addresses_ LINEWATCH_GUARDED_BY(mutex_);
};

constexpr const char* kTimetable = "https://agency.example/t.zip";
constexpr const char* kCopy = "https://copies.example/t.zip";
constexpr const char* kAlerts = "https://agency.example/alerts";

class FeedAddingTest : public FeedsFixture {
 protected:
  void SetUp() override {
    FeedsFixture::SetUp();
    agency_->give(kAlerts, body({.alerts = {alertOf("M1", "a")}}));
    agency_->give(kTimetable, HttpResponse{.body = Bytes(kTimetableZip.begin(), kTimetableZip.end())});
    agency_->give(kCopy, HttpResponse{.body = Bytes(kTimetableZip.begin(), kTimetableZip.end())});
  }
  StoredFeeds feeds() {
    return StoredFeeds(makeStateDatabase(*StateDirectories::under(folder_.path()), log_));
  }
  FeedAdding::Environment environment() {
    return {.feeds = feeds(),
            .cache = cache(),
            .now = [this] { return now_; },
            .fetcherSource = [this] { return Outcome<std::shared_ptr<HttpFetcher>>(agency_); }};
  }
  /// Adds the feed and waits for the end.
  Outcome<FeedFindings> add(FeedProposal proposal) {
    FeedAdding adding(std::move(proposal), environment());
    EXPECT_TRUE(adding.waitFor(Seconds(60)));
    return *adding.progress().result;
  }
  std::size_t savedFeedCount() { return feeds().list()->size(); }

  std::shared_ptr<AgencyServer> agency_ = std::make_shared<AgencyServer>();
  const FeedProposal kProposal{{"town", kTimetable, kAlerts}, {kCopy}};
};

TEST_F(FeedAddingTest, SavesTheFeedAndWhatWasFetched) {
  const auto findings = add(kProposal);
  ASSERT_TRUE(findings) << sentenceOf(findings.error());
  EXPECT_EQ(findings->lineCount, 1U);
  EXPECT_EQ(findings->alertCount, 1U);
  EXPECT_TRUE(findings->state.knowsLines());
  EXPECT_FALSE(findings->agencyFailure);
  EXPECT_THAT(*feeds().list(), ElementsAre(kProposal.feed));
  EXPECT_THAT(agency_->addresses(), ElementsAre(kAlerts, kTimetable));
  const auto documents = documentsFrom(agency_, cache());
  EXPECT_TRUE(documents->lineIndexOf(kProposal.feed));
  EXPECT_EQ(ids(documents->alertsOf(kProposal.feed, {})), "a ");
  EXPECT_THAT(agency_->addresses(), IsEmpty()) << "nothing is fetched twice";
  EXPECT_THAT(sentenceOf(add(kProposal).error()), HasSubstr("a feed of that name exists"));
}

TEST_F(FeedAddingTest, TakesTheCataloguesCopyWithoutTheKey) {
  FeedProposal proposal = kProposal;
  proposal.feed.gtfs.keys = {.query = {{"token", "KEY"}}, .key = "s3cret"};
  agency_->give(kTimetable, failure("gone", "", ""));
  const auto findings = add(proposal);
  ASSERT_TRUE(findings) << sentenceOf(findings.error());
  EXPECT_THAT(sentenceOf(*findings->agencyFailure), HasSubstr("t.zip: gone"));
  EXPECT_THAT(*feeds().list(), ElementsAre(StoredFeed{"town", kCopy, kAlerts}));

  agency_->give(kCopy, failure("gone too", "", ""));
  proposal.feed.name = "other";
  EXPECT_THAT(sentenceOf(add(proposal).error()), HasSubstr("https://agency.example/t.zip: gone"));
  EXPECT_EQ(savedFeedCount(), 1U);
}

TEST_F(FeedAddingTest, CancelEndsAFetchThatHangsAndSavesNothing) {
  FeedProposal proposal = kProposal;
  proposal.feed.gtfs = "https://agency.example/hangs";
  FeedAdding adding(proposal, environment());
  agency_->waitForRequest("https://agency.example/hangs");
  EXPECT_EQ(adding.progress().step, AddingProgress::Step::fetchingTimetable);
  adding.cancel();
  const auto result = adding.progress().result;
  ASSERT_TRUE(result) << "the end is known at once";
  EXPECT_EQ(failureCodeOf(result->error()), FailureCode::cancelled);
  EXPECT_EQ(savedFeedCount(), 0U);
  EXPECT_FALSE(cache()->find("town", "alerts", kAlerts));
}

TEST_F(FeedAddingTest, FailsForASavedFeedWhoseTimetableCannotBeRenewed) {
  ASSERT_TRUE(add(kProposal));
  agency_->give(kTimetable, failure(FailureCode::timedOut, "", "", "no answer"));
  cache()->expire("town");
  const auto findings = add({.feed = kProposal.feed, .timetableCopies = {}, .isSaved = true});
  ASSERT_FALSE(findings);
  EXPECT_THAT(sentenceOf(findings.error()), HasSubstr("no answer"));
  EXPECT_TRUE(documentsFrom(agency_, cache())->lineIndexOf(kProposal.feed)) << "the old one serves on";
}

TEST_F(FeedAddingTest, TellsNothingMoreAfterCancelEvenIfItIsSaving) {
  ASSERT_TRUE(*feeds().add({"other", "/gtfs", "/alerts"}));
  auto state = SqliteDatabase::open("state database", folder_.path() / "linewatch.sqlite",
                                    SqliteDatabase::Mode::readWrite, {});
  ASSERT_FALSE(state->run("BEGIN IMMEDIATE"));
  std::atomic<int> told = 0;
  FeedAdding adding(kProposal, environment(), [&told] { ++told; });
  while (adding.progress().step != AddingProgress::Step::saving) std::this_thread::yield();
  adding.cancel();
  const int toldBefore = told;
  ASSERT_FALSE(state->run("ROLLBACK"));
  ASSERT_TRUE(adding.waitFor(Seconds(60)));
  EXPECT_EQ(told, toldBefore);
  EXPECT_EQ(savedFeedCount(), 2U);
}

TEST_F(FeedAddingTest, TellsOfProgressOnceUntilItIsRead) {
  Mutex mutex;
  std::size_t calls = 0;
  FeedAdding adding(kProposal, environment(), [&] {
    const MutexLock lock(mutex);
    ++calls;
  });
  ASSERT_TRUE(adding.waitFor(Seconds(60)));
  const MutexLock lock(mutex);
  EXPECT_EQ(calls, 1U);
  const AddingProgress progress = adding.progress();
  EXPECT_EQ(progress.lineCount, 1U);
  EXPECT_TRUE(progress.result->succeeded());
}

}  // namespace
}  // namespace linewatch
