#include "status/transit_status.h"

#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/transit_records.h"
#include "shared/failure.h"
#include "status/status_document.h"
#include "status/status_texts.h"
#include "wire/json_text.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using State = TransitStatus::State;

const Date kNow{Seconds(1'000'000)};

SharedIncident incident(std::uint64_t muid, OptionalText title, std::optional<Date> start = {},
                        std::optional<Date> end = {}) {
  return std::make_shared<const TransitIncidentRecord>(
      TransitIncidentFields{.muid = muid, .startDate = start, .endDate = end, .title = std::move(title)});
}

SharedLineItem line(std::uint64_t muid, std::string name, TransitIncidents incidents = {}) {
  const auto system = std::make_shared<const TransitSystem>(TransitSystem{.name = "Metro"});
  return std::make_shared<const TransitLineRecord>(
      TransitLineFields{.muid = muid, .name = std::move(name), .system = system}, std::move(incidents));
}

std::string summary(const TransitStatus& status, const char* locale = "en") {
  IcuLocalization texts(*UserLocale::parse(locale));
  return statusSummary(status, texts);
}

std::vector<std::string> details(const TransitStatus& status, std::size_t limit = 10, Date now = kNow) {
  IcuLocalization texts(*UserLocale::parse("en"));
  return statusDetails(status, now, texts, limit);
}

TEST(TransitStatus, SaysGoodServiceOnlyOfKnownLines) {
  const SharedIncident strike = incident(11, "Strike");
  const SharedIncident ended = incident(12, "Ended", {}, kNow - Seconds(1));
  const SharedIncident later = incident(13, "Later", kNow + Seconds(1));
  const Error failed = failure(FailureCode::unreachable, "", "", "connection refused");
  const struct {
    const char* name;
    TransitNews news;
    State state;
    const char* summary;
  } cases[] = {
      {"no favourites", {}, State::noFavorites, "No Favorite Lines"},
      {"all known", {.favorites = 2, .lines = {line(1, "A"), line(2, "B")}}, State::allClear, "Good Service"},
      {"none in force",
       {.favorites = 1, .lines = {line(1, "A", {ended, later})}},
       State::allClear,
       "Good Service"},
      {"shared incident",
       {.favorites = 3, .lines = {line(1, "A", {strike}), line(2, "B"), line(3, "C", {strike, strike})}},
       State::incidents,
       "2 lines with advisories"},
      {"one unknown",
       {.favorites = 2, .lines = {line(1, "A")}, .unknownLines = {"B"}},
       State::unknown,
       "No news of 1 line"},
      {"left out without a name",
       {.favorites = 3, .lines = {line(1, "A")}},
       State::unknown,
       "No news of 2 lines"},
      {"incident and unknown",
       {.favorites = 2, .lines = {line(1, "A", {strike})}, .unknownLines = {"B"}},
       State::incidents,
       "1 line with advisories · No news of 1 line"},
      {"failed",
       {.favorites = 2, .lines = {line(1, "A")}, .error = failed},
       State::unknown,
       "Can’t Load Advisories"},
      {"favourites not read", {.error = failed}, State::unknown, "Can’t Load Advisories"},
  };
  for (const auto& [name, news, state, text] : cases) {
    const TransitStatus status = transitStatus(news, kNow);
    EXPECT_EQ(status.state, state) << name;
    EXPECT_EQ(summary(status), text) << name;
    EXPECT_EQ(status.state == State::allClear, summary(status) == "Good Service") << name;
  }
  const TransitStatus failedStatus = transitStatus(cases[7].news, kNow);
  EXPECT_EQ(failedStatus.unknownCount, 2U);
  EXPECT_THAT(failedStatus.lines, IsEmpty()) << "a failed look-up answers nothing";
}

TEST(TransitStatus, SpeaksTheRidersLanguage) {
  const TransitStatus status =
      transitStatus({.favorites = 2, .lines = {line(1, "U6", {incident(11, "Streik")})}}, kNow);
  EXPECT_EQ(summary(status, "de-AT"), "1 Linie mit Störungen · Nichts bekannt zu 1 Linie");
  EXPECT_EQ(summary(status, "pt-PT"), "1 linha com perturbações · Sem notícias de 1 linha");
}

TEST(TransitStatus, DetailsListLinesReasonAndAge) {
  const SharedIncident strike = incident(11, "Strike"), untitled = incident(12, {});
  TransitNews news{.favorites = 5,
                   .lines = {line(1, "A", {strike, untitled}), line(2, "B"), line(3, "C", {strike})},
                   .unknownLines = {"D", "E"},
                   .received = kNow,
                   .isSampleCity = true};
  const TransitStatus status = transitStatus(news, kNow);
  EXPECT_THAT(details(status), ElementsAre("A: Strike +1", "C: Strike", "No news of lines D, E."));
  EXPECT_THAT(details(status, 1), ElementsAre("A: Strike +1", "1 more", "No news of lines D, 1 more."));
  EXPECT_THAT(summary(status), testing::StartsWith("A made-up city: 2 lines with advisories"));
  EXPECT_EQ(details(status, 10, kNow + Seconds(600)).back(), "Updated 10 minutes ago");
  news.received = kNow + Seconds(60);
  EXPECT_EQ(transitStatus(news, kNow).ageAt(kNow), Seconds(0)) << "a feed's clock may be ahead";
  EXPECT_TRUE(transitStatus(news, kNow).saysTheSameAs(status));
  news.lines.pop_back();
  EXPECT_FALSE(transitStatus(news, kNow).saysTheSameAs(status));
}

TEST(TransitStatus, DocumentHoldsWhatIsKnown) {
  TransitNews news{.favorites = 3,
                   .lines = {line(1, "A", {incident(11, "Strike")}), line(2, "B")},
                   .unknownLines = {"C"},
                   .received = kNow,
                   .severities = {{11, StatusSeverity::warning}}};
  const TransitStatus status = transitStatus(news, kNow);
  EXPECT_EQ(status.worstSeverity(), StatusSeverity::warning);
  EXPECT_EQ(jsonText(statusForm(status, "two")),
            R"({"error": null, "incidents": [{"blocking": false, "id": "11", "severity": "warning", )"
            R"("summary": null, "title": "Strike"}], "lines": [{"agency": "Metro", "id": "1", )"
            R"("incidents": ["11"], "name": "A", "status": "incidents"}, {"agency": "Metro", "id": "2", )"
            R"("incidents": [], "name": "B", "status": "good"}], "received": "1970-01-12T13:46:40Z", )"
            R"("sampleCity": false, "state": "incidents", "summary": "two", "unknownCount": 1, )"
            R"("unknownLines": ["C"], "version": 1})");
}

}  // namespace
}  // namespace linewatch
