#include "feeds/service_badge.h"

#include <gtest/gtest.h>

#include "platform/transit_storage_incident.h"

namespace linewatch {
namespace {

constexpr Date kMoment{Seconds(1000)};

SharedIncident blockingIncident(bool isBlocking, std::optional<double> start, std::optional<double> end) {
  TransitIncidentFields fields{.muid = 1, .isBlockingIncident = isBlocking};
  if (start) fields.startDate = Date(Seconds(*start));
  if (end) fields.endDate = Date(Seconds(*end));
  return std::make_shared<const TransitStorageIncident>(std::move(fields));
}

std::shared_ptr<const TransitLineFields> lineSeven() {
  const auto artwork = std::make_shared<const TransitArtworkDataSource>(TransitArtworkDataSource{
      .shieldDataSource = ShieldDataSource{.shieldText = "7"}, .accessibilityText = "7"});
  return std::make_shared<const TransitLineFields>(
      TransitLineFields{.name = "7", .artwork = artwork, .alternateArtwork = artwork});
}

TEST(ServiceBadge, StandsOnTheArtworkWhileABlockingIncidentIsInForce) {
  const auto plain = lineSeven();
  const auto badged = withServiceBadge(
      plain, {blockingIncident(false, {}, {}), blockingIncident(true, 1000, 1000)}, kMoment, "No service");
  TransitArtworkDataSource expected = *plain->artwork;
  expected.hasRoutingIncidentBadge = true;
  expected.accessibilityText = "7, No service";
  EXPECT_EQ(*badged->artwork, expected);
  EXPECT_EQ(badged->alternateArtwork, badged->artwork);
  EXPECT_FALSE(plain->artwork->hasRoutingIncidentBadge);
  EXPECT_EQ(badged->name, "7");
  EXPECT_NE(withServiceBadge(plain, {blockingIncident(true, {}, {})}, kMoment, ""), plain);
  for (const SharedIncident& other :
       {blockingIncident(false, {}, {}), blockingIncident(true, 1001, {}), blockingIncident(true, {}, 999)}) {
    EXPECT_EQ(withServiceBadge(plain, {other}, kMoment, "No service"), plain);
  }
}

TEST(ServiceBadge, LeavesALineWithoutArtworkWithoutBadge) {
  const auto plain = std::make_shared<const TransitLineFields>(TransitLineFields{.name = "7"});
  const auto badged = withServiceBadge(plain, {blockingIncident(true, {}, {})}, kMoment, "No service");
  EXPECT_EQ(badged->artwork, nullptr);
  EXPECT_EQ(badged->alternateArtwork, nullptr);
}

}  // namespace
}  // namespace linewatch
