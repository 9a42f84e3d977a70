#include "list/list_dictionary_form.h"

#include <gtest/gtest.h>

#include "activity/openable_url.h"
#include "list/row_artwork.h"
#include "simulation/platform_test.h"
#include "wire/json_text.h"

namespace linewatch {
namespace {

class ListDictionaryForm : public PlatformTest {
 protected:
  static SharedArtwork shield(std::string text) {
    TransitArtworkDataSource artwork;
    artwork.shieldDataSource = ShieldDataSource{.shieldText = std::move(text)};
    return std::make_shared<const TransitArtworkDataSource>(std::move(artwork));
  }
};

TEST_F(ListDictionaryForm, ShowsEachKindOfRow) {
  const auto open = std::make_shared<const OpenableURL>(URL{"rova://?t=r"});
  const auto activity = RVUserActivityData::make("x.List", Dictionary{{"bs", Bytes{1, 2, 3}}});
  const auto line = std::make_shared<const RVTransitItem>("Strike", std::nullopt,
                                                          lineArtwork(shield("A"), nullptr), true, open);
  const auto image = std::make_shared<const RVTransitItem>("Good", "A, B", imageArtwork("Check", kFaintAlpha),
                                                           false, nullptr);
  const auto summary =
      std::make_shared<const RVTransitSummaryItem>("2", TransitArtworks{shield("A"), shield("B")}, activity);
  EXPECT_EQ(jsonText(dictionaryForm(RVTransitListItem(summary, TransitItems{line, image}))),
            R"({"expandedItems": [)"
            R"({"artwork": {"alpha": 1, "shield": {"shieldText": "A", "shieldType": 0}, "size": 3}, )"
            R"("displayArtwork": true, "kind": "item", "openable": {"url": "rova://?t=r"}, )"
            R"("primaryText": "Strike", "secondaryText": null}, )"
            R"({"artwork": {"alpha": 0.20000000298023224, "image": "Check"}, "displayArtwork": false, )"
            R"("kind": "item", "openable": null, "primaryText": "Good", "secondaryText": "A, B"}], )"
            R"("summaryItem": {"artworks": [{"shieldText": "A", "shieldType": 0}, )"
            R"({"shieldText": "B", "shieldType": 0}], "kind": "summary", )"
            R"("openable": {"activityType": "x.List", "userInfo": {"bs": "AQID"}}, "primaryText": "2"}})");
  EXPECT_EQ(jsonText(dictionaryForm(RVTransitListItem({}, TransitItems{}))),
            R"({"expandedItems": [], "summaryItem": null})");
}

TEST_F(ListDictionaryForm, PrintsAnotherValueInPlaceOfBytes) {
  const auto row = std::make_shared<const RVTransitItem>(
      "Strike", std::nullopt, nullptr, true,
      RVUserActivityData::make("x", Dictionary{{"bs", Bytes{1, 2}}, {"text", "kept"}}));
  const Dictionary form =
      dictionaryForm(*row, [](const Bytes& bytes) { return Value(std::uint64_t{bytes.size()}); });
  EXPECT_EQ(jsonText(form.at("openable")), R"({"activityType": "x", "userInfo": {"bs": 2, "text": "kept"}})");
}

TEST_F(ListDictionaryForm, DescribesOnlyTheFieldsOfAnArtworkThatAreSet) {
  TransitArtworkDataSource artwork;
  EXPECT_EQ(jsonText(dictionaryForm(artwork)), "{}");
  artwork.artworkSourceType = kArtworkSourceIcon;
  artwork.iconDataSource = IconDataSource{.cartoID = 5};
  artwork.iconFallbackShieldDataSource = ShieldDataSource{};
  artwork.hasRoutingIncidentBadge = true;
  artwork.intrinsicWidth = 40;
  EXPECT_EQ(jsonText(dictionaryForm(artwork)),
            R"({"artworkSourceType": 2, "cartoID": 5, "hasRoutingIncidentBadge": true, )"
            R"("iconFallbackShieldDataSource": {"shieldType": 0}, "iconType": 0, "width": 40})");
}

}  // namespace
}  // namespace linewatch
