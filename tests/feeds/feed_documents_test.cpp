#include "feeds/feed_documents.h"

#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/feeds_fixture.h"
#include "feeds/timetable_zip.h"

namespace linewatch {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class FeedDocumentsTest : public FeedsFixture {
 protected:
  const StoredFeed kRemote{"bus", "", "https://example.org/alerts"};
};

TEST_F(FeedDocumentsTest, FetchesConditionallyAndAtMostEveryFifteenSeconds) {
  const auto feedDocuments = documents(cache());
  FeedAlerts held;
  const auto after = [&](double seconds) {
    now_ += Seconds(seconds);
    held = feedDocuments->alertsOf(kRemote, held);
    return ids(held);
  };
  server_->answer = body({.alerts = {{.id = "a"}}}, "tag");
  EXPECT_EQ(after(0), "a ");
  EXPECT_EQ(server_->requests.back().etag, "");
  server_->answer = body({.alerts = {{.id = "b"}}, .timestamp = 1001});
  EXPECT_EQ(after(14), "a ") << "what is seconds old is not asked for again";
  EXPECT_EQ(server_->requests.size(), 1U);
  EXPECT_EQ(after(1), "b ");
  EXPECT_EQ(server_->requests.back().etag, "tag");
  server_->answer = body({.alerts = {{.id = "c"}}, .timestamp = 1002, .isDifference = true}, "tag 2");
  EXPECT_EQ(after(20), "b c ");
  server_->answer = HttpResponse{.notModified = true};
  const SharedAlertsMessage before = held.message;
  EXPECT_EQ(after(20), "b c ");
  EXPECT_EQ(held.message, before);
  EXPECT_EQ(server_->requests.back().etag, "tag 2");
  EXPECT_EQ(after(14), "b c ");
  EXPECT_EQ(server_->requests.size(), 4U) << "what was confirmed is as good as new";
}

TEST_F(FeedDocumentsTest, KnowsTheStopsOfCachedAndUncachedTimetables) {
  const auto timetable = folder_.path() / "gtfs";
  std::filesystem::create_directories(timetable);
  writeFile(timetable / "routes.txt", "route_id\n1\n");
  const auto nameOfStop = [&](const std::shared_ptr<FeedDocuments>& feedDocuments) {
    const StoredFeed feed{"bus", timetable.string(), ""};
    EXPECT_TRUE(feedDocuments->lineIndexOf(feed));
    const auto names = feedDocuments->stopNamesOf(feed);
    return names->find("s") ? names->find("s")->name : "none";
  };
  EXPECT_EQ(nameOfStop(documents(cache())), "none");
  writeFile(timetable / "stops.txt", "stop_id,stop_name\ns,Harbour\n");
  EXPECT_EQ(nameOfStop(documents()), "Harbour");
  EXPECT_EQ(nameOfStop(documents(cache())), "Harbour") << "the new table is noticed";
  EXPECT_EQ(cache()->stopPage("bus", "gtfs " + timetable.string(), "s"), "s\tHarbour\t\n");
  writeFile(timetable / "stops.txt", "stop_id,stop_name\n\"s,Harbour\n");
  EXPECT_EQ(nameOfStop(documents(cache())), "none");
  EXPECT_THAT(log_.lines(), IsEmpty()) << "the cache had no trouble";
}

TEST_F(FeedDocumentsTest, FetchesNothingBeforeMaxAgeUpToFiveMinutes) {
  FeedAlerts held;
  const auto requestsAfter = [&](double seconds, std::optional<Seconds> maxAge) {
    now_ += Seconds(seconds);
    server_->requests.clear();
    auto answer = body({});
    answer.maxAge = maxAge;
    server_->answer = answer;
    held = documents()->alertsOf(kRemote, held);
    return server_->requests.size();
  };
  EXPECT_EQ(requestsAfter(0, Seconds(60)), 1U);
  EXPECT_EQ(requestsAfter(59, {}), 0U);
  EXPECT_EQ(requestsAfter(1, Seconds(86400)), 1U);
  EXPECT_EQ(requestsAfter(299, {}), 0U);
  EXPECT_EQ(requestsAfter(1, Seconds(0)), 1U);
  EXPECT_EQ(requestsAfter(14, {}), 0U);
  EXPECT_EQ(requestsAfter(-20, {}), 1U) << "the clock was set back";
}

TEST_F(FeedDocumentsTest, KeepsAlertsThroughFailuresAndWaitsForRetryAfter) {
  FeedAlerts held;
  const auto after = [&](double seconds) {
    now_ += Seconds(seconds);
    held = documents()->alertsOf(kRemote, held);
    return ids(held);
  };
  server_->answer = failure("timed out", "", "");
  EXPECT_EQ(after(0), "feed bus: https://example.org/alerts: timed out");
  EXPECT_EQ(held.failures, 1U);
  server_->answer = body({.alerts = {{.id = "a"}}}, "tag");
  EXPECT_EQ(after(1), "a ");
  EXPECT_EQ(held.failures, 0U);
  const Date received = now_;

  server_->answer = failure("timed out", "", "");
  EXPECT_EQ(after(20), "a feed bus: https://example.org/alerts: timed out");
  Error busy = failure("503", "", "");
  busy.info.emplace(kRetryAfterKey, 120.0);
  server_->answer = busy;
  EXPECT_EQ(after(1), "a feed bus: https://example.org/alerts: 503") << "a failure is tried again at once";
  EXPECT_EQ(held.failures, 2U);
  EXPECT_EQ(held.received, received);
  EXPECT_EQ(held.retryAfter, now_ + Seconds(120));
  const std::size_t requests = server_->requests.size();
  // As where a network answers with a page of its own.
  server_->answer = HttpResponse{.body = {'<'}};
  EXPECT_EQ(after(119), "a feed bus: https://example.org/alerts: 503");
  EXPECT_EQ(server_->requests.size(), requests);
  EXPECT_THAT(after(1), HasSubstr("a feed bus: https://example.org/alerts: a page of markup"));
  EXPECT_EQ(server_->requests.back().etag, "tag");
  server_->answer = HttpResponse{.notModified = true};
  EXPECT_EQ(after(1), "a ");
  EXPECT_EQ(held.received, now_);
}

TEST_F(FeedDocumentsTest, AnotherProcessKeepsTheTimesThatTheServerAskedFor) {
  const StoredFeed feed{"bus", "https://example.org/gtfs", "https://example.org/alerts"};
  // Each call is a new process.
  const auto alertsAfter = [&](double seconds) {
    now_ += Seconds(seconds);
    return documents(cache())->alertsOf(feed, {});
  };
  const auto linesAfter = [&](double seconds) {
    now_ += Seconds(seconds);
    const auto index = documents(cache())->lineIndexOf(feed);
    return index ? "lines" : sentenceOf(index.error());
  };
  auto answer = body({.alerts = {{.id = "a"}}}, "tag");
  answer.maxAge = Seconds(120);
  server_->answer = answer;
  EXPECT_EQ(ids(alertsAfter(0)), "a ");
  Error busy = failure(FailureCode::unreachable, "", "", "busy");
  busy.info.emplace(kRetryAfterKey, 600.0);
  server_->answer = busy;
  EXPECT_EQ(ids(alertsAfter(119)), "a ") << "max-age";
  const std::string sentence = "feed bus: https://example.org/alerts: busy";
  EXPECT_EQ(ids(alertsAfter(1)), "a " + sentence);
  EXPECT_EQ(linesAfter(0), "feed bus: https://example.org/gtfs: busy") << "each document waits by itself";

  server_->answer = HttpResponse{.notModified = true};
  const std::size_t requests = server_->requests.size();
  const FeedAlerts waiting = alertsAfter(500);
  EXPECT_EQ(ids(waiting), "a " + sentence);
  EXPECT_EQ(failureCodeOf(*waiting.failure), FailureCode::unreachable);
  EXPECT_EQ(waiting.retryAfter, now_ + Seconds(100));
  EXPECT_EQ(linesAfter(99), "feed bus: https://example.org/gtfs: busy");
  EXPECT_EQ(server_->requests.size(), requests) << "Retry-After";
  EXPECT_EQ(ids(alertsAfter(1)), "a ");
  EXPECT_EQ(ids(alertsAfter(20)), "a ") << "the failure is forgotten";
  server_->answer = HttpResponse{.body = Bytes(kTimetableZip.begin(), kTimetableZip.end())};
  EXPECT_EQ(linesAfter(0), "lines");
}

TEST_F(FeedDocumentsTest, AWrongClockOfTheServerMakesNoLaterAnswerOlder) {
  const auto answered = [&](const char* id, std::uint64_t timestamp) {
    now_ += Seconds(20);
    server_->answer = body({.alerts = {{.id = id}}, .timestamp = timestamp});
    const FeedAlerts alerts = documents(cache())->alertsOf(kRemote, {});
    return ids(alerts) + std::to_string(alerts.message->timestamp());
  };
  EXPECT_EQ(answered("a", 1'800'000'000), "a 0") << "years ahead";
  EXPECT_THAT(platform_->transcript().logTexts("error"),
              ElementsAre(HasSubstr("feed bus: the time in the header of its alerts, 1800000000 s")));
  EXPECT_EQ(answered("b", 2040), "b 2040");
  EXPECT_EQ(answered("c", 2'060'000), "c 0") << "milliseconds";
  EXPECT_EQ(answered("d", 2080), "d 2080");
  EXPECT_EQ(answered("e", 2079), "d 2080");
}

TEST_F(FeedDocumentsTest, CachedLinesServeWhenTheTimetableCannotBeFetched) {
  const StoredFeed feed{"bus", "https://example.org/gtfs.zip", ""};
  const auto lineIds = [&] {
    const auto index = documents(cache())->lineIndexOf(feed);
    return index ? (*index)->nameOfRoute(0) : sentenceOf(index.error());
  };
  server_->answer = HttpResponse{.body = {'<'}};
  EXPECT_EQ(lineIds(),
            "feed bus: https://example.org/gtfs.zip: it is not a zip archive, or it is incomplete");
  server_->answer = HttpResponse{.body = Bytes(kTimetableZip.begin(), kTimetableZip.end())};
  EXPECT_EQ(lineIds(), "M1");
  EXPECT_EQ(lineIds(), "M1");
  EXPECT_EQ(server_->requests.size(), 2U) << "a timetable is asked for once a day";
  now_ += Seconds(86400 * 30);
  server_->answer = HttpResponse{.body = {'<'}};
  EXPECT_EQ(lineIds(), "M1");
  EXPECT_THAT(platform_->transcript().logTexts("error"),
              ElementsAre(AllOf(HasSubstr("https://example.org/gtfs.zip: "),
                                HasSubstr("; going on with the lines known before"))));
  server_->answer = failure("timed out", "", "");
  EXPECT_EQ(lineIds(), "M1");
}

TEST_F(FeedDocumentsTest, CachesTheLinesOfAFolderUntilItsFilesChange) {
  const auto routes = folder_.path() / "bus" / "routes.txt";
  std::filesystem::create_directories(routes.parent_path());
  writeFile(routes, "route_id,route_short_name\n1,bus one\n2,bus two\n");
  const StoredFeed bus{"bus", routes.parent_path().string(), ""};
  const auto time = std::filesystem::last_write_time(routes);
  const auto firstLine = [&] { return (*documents(cache())->lineIndexOf(bus))->nameOfRoute(0); };
  EXPECT_EQ(firstLine(), "bus one");
  writeFile(routes, "route_id,route_short_name\n1,bus ONE\n2,bus two\n");
  std::filesystem::last_write_time(routes, time);
  EXPECT_EQ(firstLine(), "bus one") << "nothing says that the file is another";
  std::filesystem::last_write_time(routes, time + std::chrono::seconds(1));
  EXPECT_EQ(firstLine(), "bus ONE");
  EXPECT_THAT(log_.lines(), IsEmpty());
}

}  // namespace
}  // namespace linewatch
