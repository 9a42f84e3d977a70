#include <gtest/gtest.h>

#include "incidents/debug_transit_incident.h"
#include "platform/main_loop.h"
#include "simulation/platform_test.h"

namespace linewatch {
namespace {

using FakeIncident = PlatformTest;

TEST_F(FakeIncident, BlocksTheLineFromYesterdayToTomorrow) {
  const TransitLineRecord line(TransitLineFields{.muid = ~std::uint64_t{0}, .name = "12"}, {});
  const auto incident = DebugTransitIncident::_debug_fakeIncidentAffectingLine(line);
  const Date now = platform_->mainLoop().now();
  EXPECT_EQ(incident->muid(), 0U) << "the line's muid + 1 wraps around";
  EXPECT_TRUE(incident->isBlockingIncident());
  EXPECT_EQ(*incident->endDate() - *incident->startDate(), Seconds(2 * 86400));
  EXPECT_EQ(incident->creationDate(), now - Seconds(86400));
  EXPECT_EQ(incident->lastUpdated(), now);
  EXPECT_EQ(incident->summary(), "12 \u00B7 Possible delays due to strike");
  ASSERT_EQ(incident->affectedEntities().size(), 1U);
  EXPECT_EQ(incident->affectedEntities().front()->muid(), line.muid());
}

TEST_F(FakeIncident, ItsLineHasTheFieldsOfTheLineItWraps) {
  const auto artwork = [] { return std::make_shared<const TransitArtworkDataSource>(); };
  const auto line =
      std::make_shared<const TransitLineRecord>(TransitLineFields{.muid = 7,
                                                                  .identifier = MapItemIdentifier{8},
                                                                  .name = "12",
                                                                  .departuresAreVehicleSpecific = true,
                                                                  .artwork = artwork(),
                                                                  .modeArtwork = artwork(),
                                                                  .alternateArtwork = artwork(),
                                                                  .lineColorString = "FF0000"},
                                                TransitIncidents{});
  const DebugTransitLineItem item(line, {nullptr});
  EXPECT_EQ(item.identifier(), line->identifier());
  EXPECT_EQ(item.artwork(), line->artwork());
  EXPECT_EQ(item.modeArtwork(), line->modeArtwork());
  EXPECT_EQ(item.alternateArtwork(), line->alternateArtwork());
  EXPECT_TRUE(item.departuresAreVehicleSpecific() && item.hasLineColorString());
  EXPECT_FALSE(item.showVehicleNumber());
  EXPECT_EQ(item.incidents().size(), 1U) << "its own, not the line's";
}

}  // namespace
}  // namespace linewatch
