#include "feeds/alerts/alerts_message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/alerts/alerts_sketch.h"
#include "feeds/alerts/held_alerts.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

FeedSketch everything() {
  return {.alerts = {{.id = "works",
                      .selectors = {{.agency = "A", .route = "R", .type = 3, .stop = "S", .direction = 1},
                                    {.trip = TripSketch{.tripId = "T", .routeId = "R"}},
                                    {.trip = TripSketch{.routeId = "R"}}},
                      .header = {{"Works", "en"}, {"Bauarbeiten", "de"}},
                      .description = {{"Buses run instead.", "en"}},
                      .url = {{"https://example.org/", ""}},
                      .cause = 10,
                      .effect = 4,
                      .active = {{10, 20}, {0, 30}}},
                     {.id = "gone", .isDeleted = true}},
          .timestamp = 1234};
}

std::vector<std::string> ids(const AlertsMessage& message) {
  std::vector<std::string> all;
  for (const auto& entity : message.entities()) all.emplace_back(entity.id);
  return all;
}

TEST(AlertsMessage, DecodesAllFields) {
  const SharedAlertsMessage message = messageOf(everything());
  EXPECT_EQ(message->version(), "2.0");
  EXPECT_EQ(message->timestamp(), 1234U);
  EXPECT_FALSE(message->isDifference());
  ASSERT_THAT(ids(*message), ElementsAre("works", "gone"));
  EXPECT_TRUE(message->entities()[1].isDeleted);

  const AlertsMessage::Entity& works = message->entities()[0];
  EXPECT_EQ(works.cause, AlertCause::construction);
  EXPECT_EQ(works.effect, AlertEffect::detour);
  EXPECT_THAT(message->periods(works),
              ElementsAre(AlertPeriod{.start = 10, .end = 20}, AlertPeriod{.end = 30}));
  EXPECT_THAT(
      message->selectors(works),
      ElementsAre(
          AlertSelector{.agencyId = "A", .routeId = "R", .routeType = 3, .stopId = "S", .direction = 1},
          AlertSelector{.tripRouteId = "R", .namesTrip = true}, AlertSelector{.tripRouteId = "R"}));
  using Text = AlertTranslation;
  EXPECT_THAT(
      message->translations(works),
      ElementsAre(Text{AlertText::url, "https://example.org/", ""}, Text{AlertText::header, "Works", "en"},
                  Text{AlertText::header, "Bauarbeiten", "de"},
                  Text{AlertText::description, "Buses run instead.", "en"}));
}

TEST(AlertsMessage, NewerPeriodsReplaceTheActiveOnes) {
  struct Row {
    AlertSketch alert;
    std::vector<AlertPeriod> expected;
  };
  using Use = AlertPeriod::Use;
  for (const Row& row : {
           Row{{.active = {{1, 2}}}, {{Use::show, 1, 2}}},
           Row{{.active = {{1, 2}}, .communication = {{3, 4}}}, {{Use::show, 3, 4}}},
           Row{{.active = {{1, 2}}, .impact = {{5, 6}}}, {{Use::affect, 5, 6}}},
           Row{{.active = {{1, 2}}, .communication = {{3, 4}}, .impact = {{5, 6}}},
               {{Use::show, 3, 4}, {Use::affect, 5, 6}}},
       }) {
    const SharedAlertsMessage message = messageOf({.alerts = {row.alert}});
    EXPECT_THAT(message->periods(message->entities()[0]), testing::ElementsAreArray(row.expected));
  }
}

TEST(AlertsMessage, UnknownNumbersAndFieldsHideNothing) {
  std::string bytes = bytesOf(FeedSketch{.alerts = {{.id = "a", .cause = 99, .effect = -1}, {.id = "b"}}});
  protozero::pbf_writer(bytes).add_string(1000, "an extension");
  const auto message = readAlertsMessage(payloadOf(bytes));
  ASSERT_TRUE(message) << sentenceOf(message);
  ASSERT_THAT(ids(**message), ElementsAre("a", "b"));
  for (const AlertsMessage::Entity& entity : (*message)->entities()) {
    EXPECT_EQ(entity.cause, AlertCause::unknownCause);
    EXPECT_EQ(entity.effect, AlertEffect::unknownEffect);
  }
}

TEST(AlertsMessage, FieldsOfARepeatedMessageAreMerged) {
  AlertSketch one{.id = "a", .header = {{"Works", "en"}}};
  AlertSketch two{.header = {{"Bauarbeiten", "de"}}, .description = {{"More.", "en"}}};
  std::string entity = bytesOf(one);
  const std::string rest = bytesOf(two);
  entity += rest.substr(2);  // all but the second empty id
  std::string bytes = bytesOf(FeedSketch{});
  protozero::pbf_writer(bytes).add_message(2, entity);
  const auto message = readAlertsMessage(payloadOf(bytes));
  ASSERT_TRUE(message) << sentenceOf(message);
  ASSERT_THAT(ids(**message), ElementsAre("a"));
  EXPECT_EQ((*message)->translations((*message)->entities()[0]).size(), 3U);
}

TEST(AlertsMessage, TheErrorOfADamagedFeedNamesPlaceAndReason) {
  const std::string good = bytesOf(everything());
  const std::string twoAlerts = bytesOf(FeedSketch{.alerts = {{.id = "a"}}});
  struct Row {
    std::string payload;
    std::string sentence;
  };
  for (const Row& row : {
           Row{"", "the payload is empty"},
           Row{"<!DOCTYPE html>", "a page of markup, not a GTFS-Realtime message"},
           Row{"{\"entity\": []}", "JSON text, not a GTFS-Realtime message"},
           Row{"PK\x03\x04 and more", "a zip archive, not a GTFS-Realtime message"},
           Row{"not valid pb data",
               "damaged, or not a GTFS-Realtime message: byte 0: a field with an unknown wire type"},
           Row{good.substr(10), "it has no header"},
           Row{good.substr(0, 20), "byte 10: it ends in the middle of a field"},
           Row{twoAlerts + std::string("\x12\x03\x0A\x05X", 5), "entity 2 at byte"},
           Row{twoAlerts + std::string("\x12\x02\x08\x05", 4), "field 1 is not bytes"},
           Row{std::string("\x08\x01", 2), "field 1 is not bytes"},
           Row{std::string("\x0A\x02\x1A\x00", 4), "header at byte 2: field 3 is not a number"},
       }) {
    EXPECT_THAT(sentenceOf(readAlertsMessage(payloadOf(row.payload))), HasSubstr(row.sentence));
  }
}

TEST(AlertsMessage, AHeaderAloneIsGoodService) {
  const auto message = readAlertsMessage(payloadOf(bytesOf(FeedSketch{})));
  ASSERT_TRUE(message);
  EXPECT_THAT((*message)->entities(), IsEmpty());
}

}  // namespace
}  // namespace linewatch
