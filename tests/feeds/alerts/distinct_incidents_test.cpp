#include "feeds/alerts/distinct_incidents.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/alerts/alerts_sketch.h"

namespace linewatch {
namespace {

using testing::ElementsAre;

/// The incidents of alerts, and the ids of the entities that give them.
struct Distinct {
  explicit Distinct(const std::vector<AlertSketch>& alerts) {
    const SharedAlertsMessage message = messageOf({.alerts = alerts});
    incidents = distinctIncidents(*message);
    for (const DistinctIncident& incident : incidents)
      ids.emplace_back(message->entities()[incident.entity].id);
  }

  std::vector<DistinctIncident> incidents;
  std::vector<std::string> ids;
};

TEST(DistinctIncidents, EntitiesThatAgreeInTextsPeriodsEffectAndStopsAreOne) {
  const AlertSketch base{.id = "1",
                         .selectors = {{.route = "1", .stop = "a"}, {.stop = "b"}},
                         .header = {{"Works", "en"}, {"Bau", "de"}},
                         .description = {{"Buses.", "en"}},
                         .effect = 4,
                         .active = {{1, 2}, {3, 4}}};
  const auto changed = [&](auto change) {
    AlertSketch other = base;
    other.id = "2";
    change(other);
    return Distinct({base, other, {.id = "3", .header = base.header}});
  };
  const Distinct same = changed([](AlertSketch& a) {
    a.cause = 3;
    a.severity = 4;
    a.selectors = {{.stop = "b"}, {.route = "7", .stop = "a"}, {.route = "7", .stop = "b"}};
    std::swap(a.header[0], a.header[1]);
    std::swap(a.active[0], a.active[1]);
  });
  EXPECT_THAT(same.ids, ElementsAre("1", "3"));
  EXPECT_THAT(same.incidents[0].repetitions, ElementsAre(1U));
  const auto isApart = ElementsAre("1", "2", "3");
  EXPECT_THAT(changed([](AlertSketch& a) { a.description[0].text = "Trams."; }).ids, isApart);
  EXPECT_THAT(changed([](AlertSketch& a) { a.header[1].text = "Umbau"; }).ids, isApart);
  EXPECT_THAT(changed([](AlertSketch& a) { a.header.pop_back(); }).ids, isApart);
  EXPECT_THAT(changed([](AlertSketch& a) { a.header[1].language = "gsw"; }).ids, isApart);
  EXPECT_THAT(changed([](AlertSketch& a) { a.effect = 1; }).ids, isApart);
  EXPECT_THAT(changed([](AlertSketch& a) { a.active[0].second = 3; }).ids, isApart);
  EXPECT_THAT(changed([](AlertSketch& a) { a.active.clear(); }).ids, isApart);
  EXPECT_THAT(changed([](AlertSketch& a) { a.selectors.pop_back(); }).ids, isApart);
  EXPECT_THAT(changed([](AlertSketch& a) { a.selectors[1].stop = "c"; }).ids, isApart);
}

TEST(DistinctIncidents, EntitiesWithoutTextsMustAgreeInCause) {
  const AlertSketch first{.id = "1", .cause = 10, .effect = 4};
  AlertSketch second = first;
  second.id = "2";
  EXPECT_EQ(Distinct({first, second}).ids.size(), 1U);
  second.cause = 3;
  EXPECT_EQ(Distinct({first, second}).ids.size(), 2U);
}

TEST(DistinctIncidents, EntitiesOfOneIdInSeveralLanguagesAreOne) {
  const auto incidents = Distinct({{.id = "1", .header = {{"Works", "en"}}},
                                   {.id = "1", .header = {{"Bau", "de"}}},
                                   {.id = "1", .header = {{"Strike", "en"}}},
                                   {.id = "1", .header = {{"Untagged", ""}}}})
                             .incidents;
  ASSERT_EQ(incidents.size(), 3U);
  EXPECT_THAT(incidents[0].otherLanguages, ElementsAre(1U));
  EXPECT_EQ(incidents[1].sameIdBefore, 1U);
  EXPECT_EQ(incidents[2].sameIdBefore, 2U);
}

TEST(DistinctIncidents, TakeLinearTimeForManyLanguagesOfOneId) {
  // Quadratic time would be ten billion comparisons.
  constexpr int kLanguages = 100'000;
  AlertSketch first{.id = "1"}, other{.id = "1"};
  for (int language = 0; language < kLanguages; ++language) {
    first.header.push_back({"Works", "a" + std::to_string(language)});
    other.header.push_back({"Bau", "b" + std::to_string(language)});
  }
  std::vector<AlertSketch> alerts{first, other};
  for (int number = 0; number < kLanguages; ++number) {
    alerts.push_back({.id = "1", .header = {{std::to_string(number), "a1"}}});
  }
  const auto incidents = Distinct(alerts).incidents;
  ASSERT_EQ(incidents.size(), 1U + kLanguages);
  EXPECT_THAT(incidents[0].otherLanguages, ElementsAre(1U));
}

}  // namespace
}  // namespace linewatch
