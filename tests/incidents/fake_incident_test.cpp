#include <gtest/gtest.h>

#include "incidents/debug_transit_incident.h"
#include "platform/main_loop.h"
#include "simulation/platform_test.h"

namespace linewatch {
namespace {

using FakeIncident = PlatformTest;

TEST_F(FakeIncident, IsARunningStrikeOnTheLine) {
  const TransitLineRecord line(TransitLineFields{.muid = ~std::uint64_t{0}, .name = "12"}, {});
  const auto incident = DebugTransitIncident::_debug_fakeIncidentAffectingLine(line);
  const Date now = platform_->mainLoop().now();
  EXPECT_EQ(incident->muid(), 0U) << "one more than the line's, around the end of the numbers";
  EXPECT_TRUE(incident->isBlockingIncident());
  EXPECT_EQ(incident->startDate(), now - Seconds(86400));
  EXPECT_EQ(incident->endDate(), now + Seconds(86400));
  EXPECT_EQ(incident->creationDate(), incident->startDate());
  EXPECT_EQ(incident->lastUpdated(), now);
  EXPECT_EQ(incident->title(), "Something Bad\u2122");
  EXPECT_EQ(incident->summary(), "12 \u00B7 Possible delays due to strike");
  EXPECT_EQ(incident->fullDescription(),
            "Only one train out of three is working due to national strike of public transit workers.");
  for (const OptionalText& message :
       {incident->messageForRoutePlanning(), incident->messageForRouteStepping(),
        incident->messageForNonRoutable()}) {
    EXPECT_EQ(message, "Something Bad\u2122 happened");
  }
  EXPECT_EQ(incident->iconType(), 1);
  EXPECT_EQ(incident->infoURL(), std::nullopt);
  ASSERT_EQ(incident->affectedEntities().size(), 1U);
  const TransitIncidentEntity& entity = *incident->affectedEntities().front();
  EXPECT_EQ(entity.muid(), line.muid());
  EXPECT_FALSE(entity.hasNextStopIDs());
  EXPECT_EQ(entity.nextStopIDs(), std::nullopt);
}

TEST_F(FakeIncident, ItsLineAnswersAsTheLineItWraps) {
  const auto artwork = std::make_shared<const TransitArtworkDataSource>();
  const auto line = std::make_shared<const TransitLineRecord>(
      TransitLineFields{.muid = 7,
                        .identifier = MapItemIdentifier{8},
                        .name = "12",
                        .system = std::make_shared<const TransitSystem>(),
                        .departureTimeDisplayStyle = 3,
                        .departuresAreVehicleSpecific = true,
                        .alternateArtwork = artwork,
                        .lineColorString = "FF0000",
                        .showVehicleNumber = true,
                        .operatingHours = "always"},
      TransitIncidents{});
  DebugTransitLineItem item(line, {});
  EXPECT_EQ(item.muid(), 7U);
  EXPECT_EQ(item.identifier(), line->identifier());
  EXPECT_EQ(item.name(), "12");
  EXPECT_EQ(item.system(), line->system());
  EXPECT_EQ(item.departureTimeDisplayStyle(), 3);
  EXPECT_TRUE(item.departuresAreVehicleSpecific());
  EXPECT_EQ(item.artwork(), nullptr);
  EXPECT_EQ(item.modeArtwork(), nullptr);
  EXPECT_EQ(item.alternateArtwork(), artwork);
  EXPECT_TRUE(item.hasLineColorString());
  EXPECT_EQ(item.lineColorString(), "FF0000");
  EXPECT_TRUE(item.showVehicleNumber());
  EXPECT_EQ(item.operatingHours(), "always");
  EXPECT_TRUE(item.hasIncidentComponent());
  EXPECT_FALSE(item.isIncidentsTTLExpired() || item.hasEncyclopedicInfo());
  EXPECT_FALSE(item.labelItems() || item.attribution() || item.mapRegion() || item.encyclopedicInfo());
  item.setIncidents({std::make_shared<const DebugTransitIncident>()});
  EXPECT_EQ(item.incidents().size(), 1U);
}

}  // namespace
}  // namespace linewatch
