#include "feeds/alerts/alerts_message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/alerts/alerts_sketch.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> ids(const AlertsMessage& message) {
  std::vector<std::string> all;
  for (const auto& entity : message.entities()) all.emplace_back(entity.id);
  return all;
}

TEST(AlertsMessage, FieldsOfARepeatedMessageAreMerged) {
  AlertSketch one{.id = "a", .header = {{"Works", "en"}}};
  AlertSketch two{.header = {{"Bauarbeiten", "de"}}, .url = {{"https://example.org/", ""}}};
  std::string entity = bytesOf(one);
  const std::string rest = bytesOf(two);
  entity += rest.substr(2);  // all but the second empty id
  std::string bytes = bytesOf(FeedSketch{});
  protozero::pbf_writer(bytes).add_message(2, entity);
  const auto message = readAlertsMessage(payloadOf(bytes));
  ASSERT_TRUE(message) << sentenceOf(message);
  ASSERT_THAT(ids(**message), ElementsAre("a"));
  using Text = AlertTranslation;
  EXPECT_THAT(
      (*message)->translations((*message)->entities()[0]),
      ElementsAre(Text{AlertText::url, "https://example.org/", ""}, Text{AlertText::header, "Works", "en"},
                  Text{AlertText::header, "Bauarbeiten", "de"}));
}

TEST(AlertsMessage, TheErrorOfADamagedFeedNamesPlaceAndReason) {
  const std::string good = bytesOf(FeedSketch{.alerts = {{.id = "works", .header = {{"Works", "en"}}}}});
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
