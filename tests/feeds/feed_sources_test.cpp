#include <barrier>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/feeds_fixture.h"
#include "feeds/transit_feeds.h"
#include "shared/mutex.h"

namespace linewatch {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A server that has an answer for each address.
class ServerOfMany final : public HttpFetcher {
 public:
  Outcome<HttpResponse> fetch(const HttpRequest& request) override {
    const MutexLock lock(mutex_);
    requests.push_back(request);
    const auto answer = answers.find(request.url);
    return answer == answers.end() ? failure("no answer", "", "") : answer->second;
  }

  std::map<std::string, Outcome<HttpResponse>> answers;
  std::vector<HttpRequest> requests;

 private:
  Mutex mutex_;
};

Error statusError(std::int64_t status) {
  Error error = failure(FailureCode::keyWanted, "the server wants a key", "", "");
  error.info.emplace(kHttpStatusKey, status);
  return error;
}

class FeedSourcesTest : public FeedsFixture {
 protected:
  void SetUp() override {
    FeedsFixture::SetUp();
    metro_.name = "metro";
    folder_.write("one/routes.txt", "route_id\n1\n2\n");
    folder_.write("two/routes.txt", "route_id\n2\n3\n");
  }

  std::shared_ptr<FeedDocuments> documents(std::shared_ptr<FeedCache> cache = nullptr) {
    return documentsFrom(servers_, std::move(cache),
                         [this](const std::string& command, const std::stop_token&) -> Outcome<std::string> {
                           commands_.push_back(command);
                           return command == "broken"
                                      ? Outcome<std::string>(failure("the key command", "", "broken"))
                                      : "key " + std::to_string(commands_.size());
                         });
  }
  /// The ids of the alerts; "none" without a message.
  static std::string ids(const FeedAlerts& alerts) {
    std::string all;
    if (!alerts.message) return "none";
    for (const auto& entity : alerts.message->entities()) all.append(entity.id).append(" ");
    return all;
  }

  StoredFeed metro_;
  std::shared_ptr<ServerOfMany> servers_ = std::make_shared<ServerOfMany>();
  std::vector<std::string> commands_;
};

TEST_F(FeedSourcesTest, SeveralAlertsFeedsAreOneAndAllOfThemMustBeThere) {
  metro_.alerts.locations = {"http://a/1", "http://a/2"};
  const auto source = documents(cache());
  FeedAlerts held;
  const auto after = [&](double seconds) {
    now_ += Seconds(seconds);
    held = source->alertsOf(metro_, held);
    return ids(held);
  };
  servers_->answers.emplace("http://a/1", body({.alerts = {alertOf("1", "a")}, .timestamp = 1990}));
  servers_->answers.emplace("http://a/2", failure("away", "", ""));
  EXPECT_EQ(after(0), "none");
  EXPECT_EQ(sentenceOf(*held.failure), "feed metro: http://a/2: away");
  EXPECT_EQ(held.failures, 1U);
  servers_->answers.insert_or_assign("http://a/2", body({.alerts = {alertOf("2", "a")}, .timestamp = 1980}));
  EXPECT_EQ(after(1),
            "a \x1F"
            "1:a ");
  EXPECT_FALSE(held.failure);
  EXPECT_EQ(held.received, Date(Seconds(2000))) << "the earlier of the two";
  EXPECT_EQ(held.message->timestamp(), 1980U);
  const SharedAlertsMessage before = held.message;
  servers_->answers.insert_or_assign("http://a/1", failure("away", "", ""));
  after(20);
  EXPECT_EQ(sentenceOf(*held.failure), "feed metro: http://a/1: away");
  EXPECT_EQ(held.received, Date(Seconds(2000)));
  servers_->answers.clear();
  EXPECT_EQ(ids(documents(cache())->alertsOf(metro_, {})), ids(held)) << "each has its own cache entry";
}

TEST_F(FeedSourcesTest, SelectorsAreUnknownOnlyIfNoTimetableHasTheRoute) {
  metro_.gtfs.locations = {folder_ / "one", folder_ / "two"};
  metro_.alerts.locations = {folder_ / "1.pb", folder_ / "2.pb"};
  folder_.write("1.pb", bytesOf({.alerts = {alertOf("1", "a"), alertOf("3", "b")}}));
  folder_.write("2.pb", bytesOf({.alerts = {alertOf("3", "c"), alertOf("4", "d")}}));
  TransitFeeds feeds([this] { return std::vector<StoredFeed>{metro_}; }, documents(), {});
  const auto states = feeds.check(now_);
  ASSERT_TRUE(states);
  EXPECT_EQ(states->front().kind, FeedState::Kind::fresh);
  const auto lines = feeds.linesOf("metro");
  EXPECT_EQ((*lines)->routes().size(), 3U);
  const std::vector<MapItemIdentifier> asked{{.muid = stableMuid("metro", "3")}};
  const auto items = feeds.lineItems(asked, now_);
  ASSERT_TRUE(items);
  EXPECT_EQ(items->front()->incidents().size(), 2U);
  folder_.write("2.pb", "damaged");
  EXPECT_FALSE(feeds.lineItems(asked, now_));
  metro_.gtfs.locations.push_back(folder_ / "none");
  EXPECT_THAT(sentenceOf(documents()->lineIndexOf(metro_).error()), HasSubstr("none: no such file"));
}

TEST_F(FeedSourcesTest, SendsEachDocumentItsOwnKeys) {
  metro_.gtfs.locations = {"http://a/gtfs"};
  metro_.gtfs.keys = {.query = {{"token", "KEY"}}, .key = "1"};
  metro_.alerts.locations = {"http://a/1"};
  metro_.alerts.keys = {.headers = {{"X-Key", "apikey KEY, MONKEYS"}, {"X-User", "ann"}}, .key = "2"};
  EXPECT_FALSE(documents()->lineIndexOf(metro_));
  EXPECT_THAT(servers_->requests.back().query, ElementsAre(NameAndValue{"token", "1"}));
  EXPECT_THAT(servers_->requests.back().headers, IsEmpty());
  documents()->alertsOf(metro_, {});
  EXPECT_THAT(servers_->requests.back().headers,
              ElementsAre(NameAndValue{"X-Key", "apikey 2, MONKEYS"}, NameAndValue{"X-User", "ann"}));
  EXPECT_THAT(servers_->requests.back().query, IsEmpty());
  EXPECT_THAT(servers_->requests.back().secrets, ElementsAre("2"));
}

TEST_F(FeedSourcesTest, RunsAKeyCommandOnceAndAgainAfterTheServerRefusesTheKey) {
  metro_.alerts.locations = {"http://a/1"};
  metro_.alerts.keys = {.headers = {{"X-Key", "KEY"}}, .command = "pass show metro"};
  const auto source = documents();
  const auto sentKey = [&] {
    source->alertsOf(metro_, {});
    return servers_->requests.back().headers.front().value;
  };
  EXPECT_EQ(sentKey(), "key 1");
  EXPECT_EQ(sentKey(), "key 1");
  servers_->answers.emplace("http://a/1", statusError(403));
  EXPECT_THAT(sentenceOf(*source->alertsOf(metro_, {}).failure), HasSubstr("the server wants a key"));
  EXPECT_EQ(sentKey(), "key 2");
  metro_.alerts.keys.command = "broken";
  const std::size_t requests = servers_->requests.size();
  EXPECT_EQ(sentenceOf(*source->alertsOf(metro_, {}).failure),
            "feed metro: http://a/1: the key command: broken");
  EXPECT_EQ(servers_->requests.size(), requests) << "without the key nothing is asked for";
}

TEST_F(FeedSourcesTest, CachesLocationsThatDifferInAKeyWithoutTheKey) {
  metro_.alerts.locations = {"http://u:s3cret-p@a/1?area=s3cret-1", "http://u:s3cret-p@a/1?area=s3cret-2"};
  servers_->answers.emplace(metro_.alerts.locations[0], body({.alerts = {alertOf("1", "a")}}));
  servers_->answers.emplace(metro_.alerts.locations[1], body({.alerts = {alertOf("1", "b")}}));
  documents(cache())->alertsOf(metro_, {});
  const std::size_t requests = servers_->requests.size();
  EXPECT_THAT(ids(documents(cache())->alertsOf(metro_, {})), AllOf(HasSubstr("a "), HasSubstr(":b ")));
  EXPECT_EQ(servers_->requests.size(), requests);
  EXPECT_THAT(textIn(StateDirectories::under(folder_.path())->cache / "feeds.sqlite"),
              AllOf(HasSubstr("http://a/1?area=***"), Not(HasSubstr("s3cret"))));
}

/// Answers no request before all that are expected have come.
class MeetingServer final : public HttpFetcher {
 public:
  Outcome<HttpResponse> fetch(const HttpRequest& request) override {
    together_.arrive_and_wait();
    return failure(request.url, "", "away");
  }

 private:
  std::barrier<> together_{3};
};

TEST_F(FeedSourcesTest, ALookUpAsksTheServersOfAllFeedsSideBySide) {
  std::vector<StoredFeed> all;
  for (const char* name : {"a", "b", "c"})
    all.push_back({name, folder_ / "one", "http://" + std::string(name)});
  const auto server = std::make_shared<MeetingServer>();
  TransitFeeds feeds(
      [&] { return all; },
      std::make_shared<FeedDocuments>(
          nullptr, [this] { return now_; },
          [&]() -> Outcome<std::shared_ptr<HttpFetcher>> { return std::shared_ptr<HttpFetcher>(server); }),
      {});
  std::vector<std::string> sentences;
  const auto checked = feeds.check(now_);
  ASSERT_TRUE(checked);
  for (const FeedState& state : *checked) sentences.push_back(sentenceOf(*state.error));
  EXPECT_THAT(sentences, ElementsAre("feed a: http://a: http://a: away", "feed b: http://b: http://b: away",
                                     "feed c: http://c: http://c: away"));
  const std::vector<MapItemIdentifier> asked{
      {.feed = "c", .routeId = "1"}, {.feed = "a", .routeId = "1"}, {.feed = "b", .routeId = "2"}};
  EXPECT_EQ(sentenceOf(feeds.lineItems(asked, now_).error()), "feed c: http://c: http://c: away");
}

}  // namespace
}  // namespace linewatch
