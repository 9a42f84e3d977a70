#include <random>

#include <alerts.pb.h>
#include <gmock/gmock.h>
#include <google/protobuf/stubs/logging.h>
#include <gtest/gtest.h>

#include "feeds/alerts/alerts_sketch.h"

// The bytes of feeds as libprotobuf's generated code reads them, beside what is read here.

namespace linewatch {
namespace {

std::string said(const AlertTranslation& text) {
  return std::string(text.text) + "@" + std::string(text.language);
}
void add(std::string& all, const char* name, const std::string& value) {
  all.append(name).append(value).append(" ");
}
void add(std::string& all, const char* name, std::uint64_t value) { add(all, name, std::to_string(value)); }

std::string described(const AlertsMessage& message) {
  std::string all;
  add(all, "version ", std::string(message.version()));
  add(all, "difference ", message.isDifference() ? 1 : 0);
  add(all, "time ", message.timestamp());
  for (const AlertsMessage::Entity& entity : message.entities()) {
    add(all, "\nentity ", std::string(entity.id));
    add(all, "deleted ", entity.isDeleted ? 1 : 0);
    add(all, "cause ", static_cast<std::uint64_t>(entity.cause));
    add(all, "effect ", static_cast<std::uint64_t>(entity.effect));
    add(all, "severity ", static_cast<std::uint64_t>(entity.severity));
    for (const AlertPeriod& period : message.periods(entity)) {
      add(all, period.use == AlertPeriod::Use::show ? "show " : "affect ", period.start);
      add(all, "to ", period.end);
    }
    for (const AlertSelector& selector : message.selectors(entity)) {
      add(all, "agency ", std::string(selector.agencyId));
      add(all, "route ", std::string(selector.routeId));
      if (selector.routeType) add(all, "type ", std::to_string(*selector.routeType));
      add(all, "trip's route ", std::string(selector.tripRouteId));
      add(all, "names trip ", selector.namesTrip ? 1 : 0);
      add(all, "stop ", std::string(selector.stopId));
      if (selector.direction) add(all, "direction ", *selector.direction);
    }
    for (const AlertTranslation& text : message.translations(entity)) add(all, "text ", said(text));
  }
  return all;
}

void addRandomPeriods(std::string& all, const char* name,
                      const google::protobuf::RepeatedPtrField<peer::TimeRange>& periods) {
  for (const peer::TimeRange& period : periods) {
    add(all, name, period.start());
    add(all, "to ", period.end());
  }
}

/// Whether the selector is about a single trip: it names the trip, or says of the trip neither name nor
/// route.
bool namesTrip(const peer::EntitySelector& selector) {
  const peer::TripDescriptor& trip = selector.trip();
  const bool tellsRoute = !selector.route_id().empty() || !trip.route_id().empty();
  return !trip.trip_id().empty() || !trip.modified_trip().empty() || (trip.ByteSizeLong() > 0 && !tellsRoute);
}

void describe(std::string& all, const peer::Alert& alert) {
  const auto addKnown = [&all](const char* name, std::int32_t value, std::int32_t last, std::uint64_t other) {
    add(all, name, value >= 1 && value <= last ? static_cast<std::uint64_t>(value) : other);
  };
  addKnown("cause ", alert.cause(), 12, 1);
  addKnown("effect ", alert.effect(), 11, 8);
  addKnown("severity ", alert.severity_level(), 4, 1);
  const bool hasNewer = !alert.communication_period().empty() || !alert.impact_period().empty();
  if (!hasNewer) addRandomPeriods(all, "show ", alert.active_period());
  addRandomPeriods(all, "show ", alert.communication_period());
  addRandomPeriods(all, "affect ", alert.impact_period());
  for (const peer::EntitySelector& selector : alert.informed_entity()) {
    add(all, "agency ", selector.agency_id());
    add(all, "route ", selector.route_id());
    if (selector.has_route_type()) add(all, "type ", std::to_string(selector.route_type()));
    add(all, "trip's route ", selector.trip().route_id());
    add(all, "names trip ", namesTrip(selector) ? 1 : 0);
    add(all, "stop ", selector.stop_id());
    const bool isOwnDirection = selector.has_direction_id() && selector.direction_id() <= 1;
    const std::uint64_t direction = isOwnDirection ? selector.direction_id() : selector.trip().direction_id();
    if (isOwnDirection || (selector.trip().has_direction_id() && direction <= 1))
      add(all, "direction ", direction);
  }
  for (const peer::TranslatedString* texts : {&alert.url(), &alert.header_text(), &alert.description_text(),
                                              &alert.tts_header_text(), &alert.tts_description_text()}) {
    for (const auto& text : texts->translation()) add(all, "text ", text.text() + "@" + text.language());
  }
}

std::string described(const peer::FeedMessage& message) {
  std::string all;
  add(all, "version ", message.header().gtfs_realtime_version());
  add(all, "difference ", message.header().incrementality() == 1 ? 1 : 0);
  add(all, "time ", message.header().timestamp());
  for (const peer::FeedEntity& entity : message.entity()) {
    if (!entity.has_alert() && !entity.is_deleted()) continue;
    add(all, "\nentity ", entity.id());
    add(all, "deleted ", entity.is_deleted() ? 1 : 0);
    describe(all, entity.alert());
  }
  return all;
}

FeedSketch feed() {
  AlertSketch works{
      .id = "works",
      .selectors = {{.agency = "A", .route = "R", .type = 3, .stop = "S", .direction = 1},
                    {.trip =
                         TripSketch{.tripId = "T", .routeId = "R", .startTime = "08:00:00", .direction = 0}},
                    {.route = "R", .trip = TripSketch{}, .direction = 2},
                    {.trip = TripSketch{.startTime = "08:00:00"}},
                    {.trip = TripSketch{.routeId = "R"}}},
      .header = {{"Works", "en"}, {"Bauarbeiten", "de"}},
      .description = {{"Buses run instead.", "en"}},
      .url = {{"https://example.org/", ""}},
      .cause = 10,
      .effect = 4,
      .severity = 3,
      .active = {{10, 20}, {0, 30}}};
  const PeriodsSketch two = {{1, 2}, {5, 0}};
  const AlertSketch later{.id = "later", .header = {{"Later", ""}}, .active = {{7, 8}}, .communication = two};
  const AlertSketch affecting{
      .id = "affecting", .cause = 13, .effect = 12, .severity = 5, .active = {{7, 8}}, .impact = two};
  const AlertSketch both{.id = "both", .active = {{7, 8}}, .communication = {{3, 4}}, .impact = {{5, 6}}};
  return {.alerts = {works, later, affecting, both, {.id = "gone", .isDeleted = true}},
          .timestamp = 1'700'000'000};
}

TEST(AlertsPeer, AgreesOnEveryDamagedFeedThatIsStillRead) {
  const google::protobuf::LogSilencer quiet;
  std::mt19937 random(11);
  const std::string good = bytesOf(feed());
  std::size_t read = 0;
  std::size_t refused = 0;
  for (int round = 0; round < 10000; ++round) {
    std::string bytes = good;
    for (unsigned change = 0; change < random() % 4; ++change) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    if (random() % 4 == 0) bytes.erase(random() % bytes.size(), 1 + random() % 3);
    const auto message = readAlertsMessage(payloadOf(bytes));
    peer::FeedMessage expected;
    const bool isReadable = expected.ParsePartialFromString(bytes) && expected.has_header();
    refused += message ? 0 : 1;
    if (!message) continue;
    ++read;
    ASSERT_TRUE(isReadable) << "round " << round;
    ASSERT_EQ(described(**message), described(expected)) << "round " << round;
  }
  EXPECT_GT(read, 1000U);
  EXPECT_GT(refused, 1000U);
}

}  // namespace
}  // namespace linewatch
