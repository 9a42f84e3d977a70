// Tests the equality of a list and its parts, which decides whether a rebuilt list is the same.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "activity/openable_url.h"
#include "list/transit_artwork_equality.h"
#include "list/transit_list_item.h"
#include "simulation/platform_test.h"

namespace linewatch {
namespace {

/// A source that equals only itself, with an archive of the given bytes or none.
class ArchivedSource final : public ArtworkImageSource {
 public:
  ArchivedSource(bool isArchivable, std::optional<Bytes> archive)
      : isArchivable_(isArchivable), archive_(std::move(archive)) {}
  bool supportsSecureArchiving() const override { return isArchivable_; }
  std::optional<Bytes> secureArchive() const override { return archive_; }
  std::size_t hash() const override { return 1; }

 private:
  bool isArchivable_;
  std::optional<Bytes> archive_;
};

TEST(ConfiguredArtwork, ComparesOpacityThenSourcesThenTheirArchives) {
  const auto source = [](bool isArchivable, std::optional<Bytes> archive) {
    return std::make_shared<const ArchivedSource>(isArchivable, std::move(archive));
  };
  const auto one = source(true, Bytes{1});
  const auto equal = [&](const std::shared_ptr<const ArtworkImageSource>& a,
                         const std::shared_ptr<const ArtworkImageSource>& b) {
    const RVConfiguredArtwork first(a, kFullAlpha), second(b, kFullAlpha);
    EXPECT_EQ(first.isEqual(second), second.isEqual(first));
    if (first.isEqual(second)) {
      EXPECT_EQ(first.hash(), second.hash());
    }
    return first.isEqual(second);
  };
  EXPECT_TRUE(equal(one, one));
  EXPECT_TRUE(equal(nullptr, nullptr));
  EXPECT_FALSE(equal(one, nullptr));
  EXPECT_TRUE(equal(one, source(true, Bytes{1})));
  EXPECT_FALSE(equal(one, source(true, Bytes{2})));
  EXPECT_FALSE(equal(one, source(false, Bytes{1})));
  EXPECT_FALSE(equal(source(true, std::nullopt), source(true, std::nullopt)))
      << "nothing shows them to be equal";
  EXPECT_TRUE(equal(std::make_shared<const NamedImage>("a"), std::make_shared<const NamedImage>("a")));
  EXPECT_FALSE(equal(std::make_shared<const NamedImage>("a"), std::make_shared<const NamedImage>("b")));
  EXPECT_FALSE(RVConfiguredArtwork(one, kFullAlpha).isEqual(RVConfiguredArtwork(one, kFaintAlpha)));
  EXPECT_FALSE(RVConfiguredArtwork(one, 0.2).isEqual(RVConfiguredArtwork(one, kFaintAlpha)));
  EXPECT_EQ(kFaintAlpha, 0.20000000298023224);
  EXPECT_EQ(RVConfiguredArtwork(nullptr, kFullAlpha).hash(), 2654435761U);
  EXPECT_EQ(RVConfiguredArtwork(nullptr, kFaintAlpha).hash(), 3689348869717491712U);
  EXPECT_EQ(RVConfiguredArtwork(one, kFullAlpha).hash(), 2654435761U ^ one->hash());
  // A fraction of a half or more is rounded up and has no remainder. A smaller fraction is the remainder. The
  // sign does not matter.
  EXPECT_EQ(RVConfiguredArtwork(nullptr, 0.75).hash(), 2654435761U);
  EXPECT_EQ(RVConfiguredArtwork(nullptr, -1.25).hash(), 2654435761U + (std::size_t{1} << 62U));
}

using ListModel = PlatformTest;

TEST_F(ListModel, ItemsDifferByEachOfTheirValuesAndByTheirClass) {
  const auto artwork = [](double alpha) {
    return std::make_shared<const RVConfiguredArtwork>(std::make_shared<const NamedImage>("a"), alpha);
  };
  const auto url = [](const char* text) { return std::make_shared<const OpenableURL>(URL{text}); };
  const RVTransitItem item("P", "S", artwork(1), true, url("u"));
  const auto copy = item.copyWithZone();
  EXPECT_TRUE(item.isEqual(*copy));
  EXPECT_EQ(item.hash(), copy->hash());
  EXPECT_EQ(copy->artwork(), item.artwork());
  for (const RVTransitItem& other :
       {RVTransitItem("p", "S", artwork(1), true, url("u")),
        RVTransitItem(std::nullopt, "S", artwork(1), true, url("u")),
        RVTransitItem("P", "", artwork(1), true, url("u")),
        RVTransitItem("P", std::nullopt, artwork(1), true, url("u")),
        RVTransitItem("P", "S", artwork(0), true, url("u")), RVTransitItem("P", "S", nullptr, true, url("u")),
        RVTransitItem("P", "S", artwork(1), false, url("u")),
        RVTransitItem("P", "S", artwork(1), true, url("v")),
        RVTransitItem("P", "S", artwork(1), true, nullptr)}) {
    EXPECT_FALSE(item.isEqual(other)) << other.description();
    EXPECT_FALSE(other.isEqual(item)) << other.description();
  }
  class Derived final : public RVTransitItem {
   public:
    using RVTransitItem::RVTransitItem;
  };
  const Derived derived("P", "S", artwork(1), true, url("u"));
  EXPECT_FALSE(item.isEqual(derived));
  EXPECT_FALSE(derived.isEqual(item));

  const RVTransitItem bare("P", std::nullopt, nullptr, true, nullptr);
  EXPECT_EQ(bare.hash(), std::hash<std::string>{}("P") ^ 2654435761U);
  EXPECT_EQ(RVTransitItem("P", "S", nullptr, false, url("u")).hash(),
            std::hash<std::string>{}("P") ^ std::hash<std::string>{}("S") ^ url("u")->hash());
  EXPECT_EQ(RVTransitItem("P", "P", artwork(0.75), false, nullptr).hash(), artwork(0.75)->hash());
  const std::string text = bare.description();
  EXPECT_TRUE(text.starts_with("<RVTransitItem:0x")) << text;
  EXPECT_TRUE(text.ends_with(
      " | text: P | subtext: (null) | artwork: (null) | showArtwork?: YES | openable: (null)>"))
      << text;
}

TEST_F(ListModel, SummariesCompareTheirArtworksByValue) {
  const auto shields = [](const std::vector<std::string>& texts) {
    TransitArtworks artworks;
    for (const std::string& text : texts) {
      artworks.push_back(std::make_shared<const TransitArtworkDataSource>(
          TransitArtworkDataSource{.shieldDataSource = ShieldDataSource{.shieldText = text}}));
    }
    return artworks;
  };
  const auto data = RVUserActivityData::make("T", Dictionary{});
  const RVTransitSummaryItem summary("2", shields({"A", "B"}), data);
  const RVTransitSummaryItem same("2", shields({"A", "B"}), RVUserActivityData::make("T", Dictionary{}));
  EXPECT_TRUE(summary.isEqual(same));
  EXPECT_EQ(summary.hash(), same.hash());
  EXPECT_EQ(summary.hash(), std::hash<std::string>{}("2") ^ 2U ^ data->hash());
  for (const RVTransitSummaryItem& other :
       {RVTransitSummaryItem("3", shields({"A", "B"}), data),
        RVTransitSummaryItem("2", shields({"B", "A"}), data), RVTransitSummaryItem("2", shields({"A"}), data),
        RVTransitSummaryItem("2", std::nullopt, data),
        RVTransitSummaryItem("2", shields({"A", "B"}), nullptr)}) {
    EXPECT_FALSE(summary.isEqual(other)) << other.description();
  }
  EXPECT_FALSE(RVTransitSummaryItem("", std::nullopt, nullptr)
                   .isEqual(RVTransitSummaryItem("", TransitArtworks{}, nullptr)));
  EXPECT_TRUE(RVTransitSummaryItem("", std::nullopt, nullptr)
                  .isEqual(RVTransitSummaryItem("", std::nullopt, nullptr)));
}

TEST_F(ListModel, ListsAreEqualRowByRow) {
  const auto item = [](const char* text) {
    return std::make_shared<const RVTransitItem>(text, std::nullopt, nullptr, true, nullptr);
  };
  const auto summary = std::make_shared<const RVTransitSummaryItem>("a", std::nullopt, nullptr);
  const RVTransitListItem list(summary, TransitItems{item("a"), item("b")});
  const RVTransitListItem same(std::make_shared<const RVTransitSummaryItem>("a", std::nullopt, nullptr),
                               TransitItems{item("a"), item("b")});
  EXPECT_TRUE(list.isEqual(same));
  EXPECT_EQ(list.hash(), same.hash());
  EXPECT_EQ(list.hash(), summary->hash() ^ 2U);
  EXPECT_FALSE(list.isEqual(RVTransitListItem(summary, TransitItems{item("b"), item("a")})));
  EXPECT_FALSE(list.isEqual(RVTransitListItem(summary, TransitItems{item("a")})));
  EXPECT_FALSE(list.isEqual(RVTransitListItem({}, TransitItems{item("a"), item("b")})));
  EXPECT_FALSE(RVTransitListItem(item("a"), {}).isEqual(RVTransitListItem(summary, {}))) << "of another kind";
  const RVTransitListItem absent({}, std::nullopt), empty({}, TransitItems{});
  EXPECT_TRUE(absent.isEqual(RVTransitListItem({}, std::nullopt)));
  EXPECT_TRUE(empty.isEqual(RVTransitListItem({}, TransitItems{})));
  EXPECT_FALSE(absent.isEqual(empty));
  EXPECT_FALSE(empty.isEqual(absent));

  const RVTransitListItem withNulls(SharedTransitItem(), TransitItems{nullptr, item("a"), nullptr});
  EXPECT_TRUE(std::holds_alternative<std::monostate>(withNulls.summaryItem()));
  EXPECT_TRUE(withNulls.isEqual(RVTransitListItem({}, TransitItems{item("a")}))) << "a null row is none";
}

TEST(TransitArtworkEquality, ReadsTheFieldsThatIdentifyAnArtwork) {
  const TransitArtworkDataSource base{
      .artworkSourceType = 1,
      .artworkUseType = 2,
      .shieldDataSource = ShieldDataSource{.shieldType = 3, .shieldText = "A", .shieldColorString = "FF0000"},
      .iconDataSource = IconDataSource{1, 2, 3, 4, 5},
      .iconFallbackShieldDataSource = ShieldDataSource{.shieldType = 4},
      .hasRoutingIncidentBadge = true,
      .accessibilityText = "A"};
  std::vector<TransitArtworkDataSource> others(18, base);
  others[0].artworkSourceType = 0;
  others[1].artworkUseType = 0;
  others[2].shieldDataSource.reset();
  others[3].shieldDataSource->shieldType = 0;
  others[4].shieldDataSource->shieldText.reset();
  others[5].shieldDataSource->shieldColorString = "";
  others[6].iconDataSource.reset();
  others[7].iconDataSource->iconType = 0;
  others[8].iconDataSource->cartoID = 0;
  others[9].iconDataSource->defaultTransitType = 0;
  others[10].iconDataSource->iconAttributeKey = 0;
  others[11].iconDataSource->iconAttributeValue = 0;
  others[12].iconFallbackShieldDataSource.reset();
  others[13].iconFallbackShieldDataSource->shieldText = "";
  others[14].hasRoutingIncidentBadge = false;
  others[15].accessibilityText.reset();
  others[16].accessibilityText = "B";
  others[17].iconFallbackShieldDataSource->shieldColorString = "00FF00";
  for (std::size_t i = 0; i < others.size(); ++i) {
    EXPECT_FALSE(TransitArtworkDataSourceIsEqual(&base, &others[i])) << i;
    EXPECT_FALSE(TransitArtworkDataSourceIsEqual(&others[i], &base)) << i;
  }
  TransitArtworkDataSource same = base;
  same.shieldDataSource->textColorString = "000000";
  same.intrinsicWidth = 7;
  EXPECT_TRUE(TransitArtworkDataSourceIsEqual(&base, &same))
      << "how it is drawn does not tell it from others";
  EXPECT_EQ(hash(base), hash(same));
  EXPECT_TRUE(TransitArtworkDataSourceIsEqual(nullptr, nullptr));
  EXPECT_FALSE(TransitArtworkDataSourceIsEqual(&base, nullptr));
}

}  // namespace
}  // namespace linewatch
