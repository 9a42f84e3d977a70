#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/gtfs/colors.h"
#include "feeds/gtfs/line_records.h"
#include "feeds/gtfs/route_mode.h"
#include "feeds/gtfs/shield_text.h"

namespace linewatch {
namespace {

SharedLineIndex indexOf(std::vector<FeedAgency> agencies, std::vector<FeedRoute> routes) {
  return std::make_shared<const LineIndex>(LineIndex::Contents{
      .feedName = "city", .language = "", .agencies = std::move(agencies), .routes = std::move(routes)});
}

TEST(LineRecords, MakeALineOfARoute) {
  const SharedLineIndex index =
      indexOf({{"A", "Alpha Transit", ""}}, {{"r7", "7", "Harbour", 0, 0, "C8102E", "FFFFFF"}});
  LineRecords records(index);
  const TransitLineFields& line = *records.lineFieldsOfRoute(0);
  EXPECT_EQ(line.muid, stableMuid("city", "r7"));
  EXPECT_EQ(line.identifier, MapItemIdentifier{line.muid});
  EXPECT_EQ(line.name, "7");
  EXPECT_EQ(line.lineColorString, "C8102E");
  const ShieldDataSource shield{
      .shieldType = 2, .shieldText = "7", .shieldColorString = "C8102E", .textColorString = "FFFFFF"};
  EXPECT_EQ(*line.artwork,
            (TransitArtworkDataSource{
                .artworkSourceType = 1, .shieldDataSource = shield, .accessibilityText = "7"}));
  EXPECT_EQ(line.alternateArtwork, line.artwork);
  EXPECT_EQ(line.modeArtwork->artworkSourceType, kArtworkSourceIcon);
  EXPECT_EQ(line.modeArtwork->iconDataSource, IconDataSource{.defaultTransitType = 2});
  EXPECT_EQ(line.system->name, "Alpha Transit");
  EXPECT_EQ(line.system->artwork->shieldDataSource->shieldText, "AT");
  EXPECT_EQ(line.system->artwork->accessibilityText, "Alpha Transit");
}

TEST(LineRecords, LeaveAbsentFieldsAbsent) {
  LineRecords records(indexOf({{"", "", ""}}, {{"r1", "", "", std::nullopt, std::nullopt, "", "FFFFFF"},
                                               {"r2", "", "", 0, std::nullopt, "", ""}}));
  const TransitLineFields& line = *records.lineFieldsOfRoute(0);
  EXPECT_EQ(line.name, "r1");
  EXPECT_EQ(line.system, nullptr);
  EXPECT_EQ(line.lineColorString, "");
  EXPECT_EQ(*line.artwork->shieldDataSource, (ShieldDataSource{.shieldText = "r1"}));
  EXPECT_EQ(line.modeArtwork->iconDataSource, IconDataSource());
  const TransitSystem& nameless = *records.lineFieldsOfRoute(1)->system;
  EXPECT_NE(nameless.muid, 0U);
  EXPECT_EQ(nameless.artwork, nullptr);
}

TEST(LineRecords, ShareEqualParts) {
  LineRecords records(
      indexOf({{"A", "Alpha Transit", ""}, {"7", "Beta", ""}}, {{"1", "7", "North", 0, 3, "C8102E", ""},
                                                                {"2", "7", "South", 0, 3, "C8102E", ""},
                                                                {"7", "7", "", 1, 1, "C8102E", ""}}));
  const TransitLineFields& north = *records.lineFieldsOfRoute(0);
  const TransitLineFields& south = *records.lineFieldsOfRoute(1);
  const TransitLineFields& metro = *records.lineFieldsOfRoute(2);
  EXPECT_EQ(records.lineFieldsOfRoute(0).get(), &north);
  EXPECT_EQ(north.artwork, south.artwork);
  EXPECT_EQ(north.modeArtwork, south.modeArtwork);
  EXPECT_EQ(north.system, south.system);
  EXPECT_NE(*north.artwork, *metro.artwork);
  EXPECT_NE(metro.system->muid, metro.muid);
}

TEST(LineRecords, GiveAnAgencyTheColorOfMostOfItsRoutes) {
  const auto badgeOf = [](const std::vector<std::string>& colors) {
    std::vector<FeedRoute> routes{{"other", "", "", 1, 3, "FFFFFF", ""}};
    for (const std::string& color : colors) {
      routes.push_back({std::to_string(routes.size()), "", "", 0, 3, color, ""});
    }
    LineRecords records(indexOf({{"A", "Alpha Transit", ""}, {"B", "", ""}}, std::move(routes)));
    return records.lineFieldsOfRoute(1)->system->artwork->shieldDataSource->shieldColorString.value_or(
        "none");
  };
  EXPECT_EQ(badgeOf({"00FF00", "C8102E", "C8102E"}), "C8102E");
  EXPECT_EQ(badgeOf({"C8102E", "00FF00", "C8102E", "00FF00"}), "none");
  EXPECT_EQ(badgeOf({"", "", "00FF00"}), "none");
}

TEST(LineRecords, UseTheFirstTextColorThatComesWithAnAgencysColor) {
  LineRecords records(
      indexOf({{"A", "Alpha", ""}, {"B", "Beta", ""}}, {{"1", "", "", 1, 3, "C8102E", ""},
                                                        {"2", "", "", 0, 3, "003DA5", "FFFFFF"},
                                                        {"3", "", "", 1, 3, "003DA5", "FFFF00"},
                                                        {"4", "", "", 1, 3, "003DA5", ""}}));
  const ShieldDataSource& badge = *records.lineFieldsOfRoute(2)->system->artwork->shieldDataSource;
  EXPECT_EQ(badge.shieldColorString, "003DA5");
  EXPECT_EQ(badge.textColorString, "FFFFFF");
}

TEST(LineRecords, TakeLinearTimeForManyAgencies) {
  // Whoever looked through all routes for the colour of each agency would not end.
  constexpr std::uint32_t kAgencies = 100'000;
  std::vector<FeedAgency> agencies;
  std::vector<FeedRoute> routes;
  for (std::uint32_t agency = 0; agency < kAgencies; ++agency) {
    const std::string id = std::to_string(agency);
    agencies.push_back({id, "", ""});
    routes.push_back({id, "", "", agency, 3, agency % 2 == 0 ? "C8102E" : "", ""});
  }
  LineRecords records(indexOf(std::move(agencies), std::move(routes)));
  std::size_t colored = 0;
  for (std::uint32_t route = 0; route < kAgencies; ++route) {
    const SharedArtwork& badge = records.lineFieldsOfRoute(route)->system->artwork;
    colored += badge->shieldDataSource->shieldColorString ? 1 : 0;
  }
  EXPECT_EQ(colored, kAgencies / 2);
}

TEST(RouteMode, CoversBasicAndExtendedTypes) {
  const std::pair<std::int32_t, TransitMode> cases[] = {
      {0, TransitMode::tram},     {1, TransitMode::metro},    {2, TransitMode::rail},
      {3, TransitMode::bus},      {4, TransitMode::ferry},    {5, TransitMode::cable},
      {6, TransitMode::cable},    {7, TransitMode::cable},    {8, TransitMode::other},
      {11, TransitMode::bus},     {12, TransitMode::metro},   {109, TransitMode::rail},
      {204, TransitMode::bus},    {401, TransitMode::metro},  {702, TransitMode::bus},
      {800, TransitMode::bus},    {900, TransitMode::tram},   {1000, TransitMode::ferry},
      {1101, TransitMode::air},   {1300, TransitMode::cable}, {1400, TransitMode::cable},
      {1501, TransitMode::other}, {-1, TransitMode::other}};
  for (const auto& [type, mode] : cases) EXPECT_EQ(modeOfRouteType(type), mode) << type;
  EXPECT_EQ(modeOfRouteType(std::nullopt), TransitMode::other);
}

TEST(ShieldText, IsAFewCharacters) {
  const auto shieldOf = [](std::string shortName, std::string longName) {
    return shieldText(
        {.id = "route-0815", .shortName = std::move(shortName), .longName = std::move(longName)});
  };
  EXPECT_EQ(shieldOf("N12", "Night bus"), "N12");
  EXPECT_EQ(shieldOf("Schnellbus X1", ""), "X1");
  EXPECT_EQ(shieldOf("", "Circle"), "Circle");
  EXPECT_EQ(shieldOf("", "Red Line"), "Red");
  EXPECT_EQ(shieldOf("", "Línea Uno"), "Uno");
  EXPECT_EQ(shieldOf("", "Metro Line"), "ML");
  EXPECT_EQ(shieldOf("", "Nachtbus N12 Altstadt"), "N12");
  EXPECT_EQ(shieldOf("", "Bus 12345678"), "12345678");
  EXPECT_EQ(shieldOf("", "Antioch - SFIA/Millbrae"), "A–S");
  EXPECT_EQ(shieldOf("", "Écluse – Pont – Zoo"), "É–Z");
  EXPECT_EQ(shieldOf("", "Bois de la Cambre"), "BC");
  EXPECT_EQ(shieldOf("", "harbour shuttle service"), "HSS");
  EXPECT_EQ(shieldOf("", "Mattapan"), "Mat");
  EXPECT_EQ(shieldOf("", "---------"), "---");
  EXPECT_EQ(shieldOf("", ""), "0815");
}

TEST(ShieldText, OfAnAgencyIsItsInitials) {
  EXPECT_EQ(badgeText({"x", "MiWay", ""}), "MiWay");
  EXPECT_EQ(badgeText({"BART", "Bay Area Rapid Transit", ""}), "BART");
  EXPECT_EQ(badgeText({"1", "Bay Area Rapid Transit District", ""}), "BART");
  EXPECT_EQ(badgeText({"1", "Société des transports de l'Ouest", ""}), "SO");
  EXPECT_EQ(badgeText({"1", "Straßenbahn", ""}), "Str");
  EXPECT_EQ(badgeText({"agency", "", ""}), "age");
  EXPECT_EQ(badgeText({"", "", ""}), "");
}

TEST(Colors, AreReadInEveryForm) {
  EXPECT_EQ(normalizedColor("00ff7F"), "00FF7F");
  EXPECT_EQ(normalizedColor("#abcdef"), "ABCDEF");
  for (const char* none : {"", "#", "FFF", "00FF7G", "0x00FF", "00FF7F0", "##ABCDE"}) {
    EXPECT_EQ(normalizedColor(none), "") << none;
  }
}

TEST(Colors, ContrastFollowsWcag) {
  EXPECT_NEAR(contrastRatio("000000", "FFFFFF"), 21, 1e-9);
  EXPECT_NEAR(contrastRatio("777777", "FFFFFF"), 4.478, 0.001);
  EXPECT_NEAR(contrastRatio("FF0000", "0000FF"), 2.149, 0.001);
  EXPECT_EQ(contrastRatio("123456", "123456"), 1);
}

TEST(Colors, TextCanBeReadOnEveryShield) {
  EXPECT_EQ(readableTextColor("FFD166", "14213D"), "FFD166");
  EXPECT_EQ(readableTextColor("FFFFFF", "FFFF33"), "000000");
  EXPECT_EQ(readableTextColor("000000", "14213D"), "FFFFFF");
  std::mt19937 random(1);
  for (int round = 0; round < 5000; ++round) {
    char background[7];
    std::snprintf(background, sizeof background, "%06X", static_cast<unsigned>(random() & 0xFFFFFFU));
    ASSERT_GE(contrastRatio(readableTextColor("", background), background), 4.5) << background;
    ASSERT_GE(contrastRatio(readableTextColor("FFFFFF", background), background), 3) << background;
  }
}

}  // namespace
}  // namespace linewatch
