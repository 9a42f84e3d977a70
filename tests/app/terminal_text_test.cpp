#include "app/terminal_text.h"

#include <memory>

#include <gtest/gtest.h>

namespace linewatch::app {
namespace {

using Colors = TerminalStyle::Colors;

SharedArtwork shield(const std::string& text, const std::string& fill = "C8102E") {
  return std::make_shared<const TransitArtworkDataSource>(TransitArtworkDataSource{
      .shieldDataSource = ShieldDataSource{.shieldText = text, .shieldColorString = fill}});
}

SharedTransitItem row(std::shared_ptr<const ArtworkImageSource> artwork, const std::string& primary,
                      const std::string& secondary) {
  return std::make_shared<const RVTransitItem>(
      primary, secondary, std::make_shared<const RVConfiguredArtwork>(artwork, kFullAlpha), true, nullptr);
}

RVTransitListItem threeRows() {
  return {std::make_shared<const RVTransitSummaryItem>(
              "2 advisories", TransitArtworks{shield("M1"), shield("12", "F2B705")}, nullptr),
          TransitItems{row(std::make_shared<const SizedTransitArtwork>(shield("M1"), 3, nullptr), "Strike",
                           "No trains run before noon"),
                       row(std::make_shared<const SizedTransitArtwork>(shield("12"), 3, nullptr), "Détour",
                           "Via Halles"),
                       row(std::make_shared<const NamedImage>("good-v2"), "Good Service", "1 other line")}};
}

TEST(TerminalText, AlignsTextsNextToTheShields) {
  EXPECT_EQ(terminalText(threeRows(), true, {}),
            "[M1]  Strike\n"
            "      No trains run before noon\n"
            "[12]  Détour\n"
            "      Via Halles\n"
            "✓     Good Service\n"
            "      1 other line\n");
  EXPECT_EQ(terminalText(threeRows(), false, {}), "2 advisories\n[M1] [12]\n");
}

TEST(TerminalText, WrapsAtTheTerminalsWidth) {
  const RVTransitListItem list(row(nullptr, "One two three four five six", "Seven"), {});
  EXPECT_EQ(terminalText(list, true, {.columns = 21}), "One two three four\nfive six\nSeven\n");
}

TEST(TerminalText, PaintsShieldsInTheLinesColours) {
  EXPECT_EQ(terminalShield(*shield("M1"), {.colors = Colors::full}),
            "\x1b[48;2;200;16;46m\x1b[38;2;255;255;255m M1 \x1b[0m");
  EXPECT_EQ(terminalShield(*shield("12", "F2B705"), {.colors = Colors::palette}),
            "\x1b[48;5;220m\x1b[38;5;16m 12 \x1b[0m");
  EXPECT_EQ(terminalShield(*shield("7", "nocolr"), {.colors = Colors::full}), "[7]");
}

TEST(TerminalText, MarksLinesWithoutService) {
  TransitArtworkDataSource artwork = *shield("7", "C8102E");
  artwork.hasRoutingIncidentBadge = true;
  EXPECT_EQ(terminalShield(artwork, {}), "[7 ✕]");
  EXPECT_EQ(terminalShieldWidth(artwork), 5U);
}

TEST(TerminalText, CountsTheShieldsThatDoNotFit) {
  const std::vector<TerminalRow> rows{
      {.shields = {shield("1"), shield("2"), shield("3"), shield("4"), shield("5")},
       .texts = {"Works", "", "Text"}},
      {.shields = {shield("9")}, .texts = {std::nullopt, "Fair"}}};
  EXPECT_EQ(terminalRows(rows, {}), "[1] [2] [3] +2  Works\n                Text\n[9]             Fair\n");
}

}  // namespace
}  // namespace linewatch::app
