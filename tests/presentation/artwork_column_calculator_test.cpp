#include "presentation/artwork_column_calculator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "presentation/counted_artworks.h"
#include "presentation/memory_constrained_artwork_cache.h"
#include "simulation/platform_test.h"

namespace linewatch {
namespace {

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kBoundless = std::numeric_limits<double>::infinity();
const ui::EdgeInsets kInsets{0, 0, 0, 16};

using Parameter = ArtworkWidthCalculatorSizeParameter;
using Calculator = TransitDirectionsListArtworkWidthCalculator;
using Artworks = std::vector<SharedSizedArtwork>;

class ArtworkColumn : public PlatformTest {
 protected:
  /// The width of the column for the artworks, at most 200 by default.
  double columnWidth(const Artworks& artworks, const Parameter& parameter = {73, 200, kInsets}) {
    double width = -1;
    smaller_ = Calculator(artworks, parameter).calculateArtworkViewWidthAndArtworkSizes(&width);
    return width;
  }
  std::int64_t sizeShown(const SharedSizedArtwork& artwork) const {
    const auto smaller = smaller_.find(artwork);
    return smaller == smaller_.end() ? artwork->shieldSize() : smaller->second->shieldSize();
  }

  CountedArtworks counted_;
  std::shared_ptr<ArtworkDataSourceCache> cache_ = counted_.makeCache();
  SmallerArtworks smaller_;
};

TEST_F(ArtworkColumn, IsAsWideAsTheWidestArtworkWithinItsLimits) {
  EXPECT_EQ(columnWidth({}), 73);
  EXPECT_EQ(columnWidth({sizedArtwork(50, cache_)}), 73) << "66 fits into the default";
  EXPECT_EQ(columnWidth({sizedArtwork(57, cache_)}), 73);
  EXPECT_EQ(columnWidth({sizedArtwork(20, cache_), sizedArtwork(100, cache_), sizedArtwork(50, cache_)}),
            116);
  EXPECT_EQ(columnWidth({sizedArtwork(184, cache_)}), 200);
  EXPECT_EQ(columnWidth({sizedArtwork(100, cache_)}, {73, 200, {1000, 4, 1000, 16}}), 120)
      << "top and bottom do not count";
  EXPECT_TRUE(smaller_.empty());
}

TEST_F(ArtworkColumn, ShrinksArtworksThatAreTooWideStepByStep) {
  const auto wide = sizedArtwork(240, cache_), wider = sizedArtwork(300, cache_),
             narrow = sizedArtwork(100, cache_);
  EXPECT_EQ(columnWidth({wide, narrow, wider}), 240 * 0.75 + 16);
  EXPECT_EQ(sizeShown(wide), 1);
  EXPECT_EQ(sizeShown(wider), -1) << "150 + 16: one step larger it would be 187.5 + 16";
  EXPECT_EQ(smaller_.size(), 2U);
  const auto& replacement = smaller_.at(wider);
  EXPECT_EQ(replacement->artworkDataSource(), wider->artworkDataSource());
  EXPECT_EQ(replacement->artworkCache(), cache_);
}

TEST_F(ArtworkColumn, IgnoresAnArtworkTooWideAtTheSmallestSize) {
  const auto huge = sizedArtwork(5000, cache_), tiny = sizedArtwork(5000, cache_, -4),
             last = sizedArtwork(5000, cache_, -3, "last"), fits = sizedArtwork(100, cache_);
  EXPECT_EQ(columnWidth({huge, tiny, last, fits}), 116);
  EXPECT_EQ(sizeShown(huge), -4);
  EXPECT_EQ(sizeShown(last), -4) << "one step is left";
  EXPECT_FALSE(smaller_.contains(tiny)) << "below the smallest size from the start: shown as it is";
  EXPECT_EQ(columnWidth({huge}), 73) << "no artwork is left";
  // 8 * 1/8 at size -4.
  EXPECT_EQ(columnWidth({sizedArtwork(8 * 100, cache_, -4, "x")}), 116) << "small sizes that fit count";
}

TEST_F(ArtworkColumn, CorrectsUnusableParameters) {
  const auto sanitized = [](double defaultWidth, double maxWidth) {
    const Parameter parameter = Calculator({}, {defaultWidth, maxWidth, kInsets}).sizeParameter();
    EXPECT_EQ(parameter.artworkInsets, kInsets);
    return std::pair(parameter.defaultArtworkViewWidth, parameter.maxArtworkViewWidth);
  };
  using Widths = std::pair<double, double>;
  EXPECT_EQ(sanitized(73, 73), Widths(73, 73));
  EXPECT_EQ(sanitized(73, 72), Widths(73, 73));
  EXPECT_EQ(sanitized(0, -5), Widths(0, 0));
  EXPECT_EQ(sanitized(0, 10), Widths(0, 10));
  EXPECT_EQ(sanitized(-1, 20), Widths(50, 50));
  EXPECT_EQ(sanitized(-1, 60), Widths(50, 60));
  EXPECT_EQ(sanitized(-kBoundless, -kBoundless), Widths(50, 50));
  EXPECT_TRUE(std::isnan(sanitized(73, kNotANumber).second));
}

TEST_F(ArtworkColumn, TerminatesForAnyNumbers) {
  const auto wide = sizedArtwork(300, cache_), notANumber = sizedArtwork(kNotANumber, cache_, 3, "NaN");
  EXPECT_EQ(columnWidth({wide}, {73, kNotANumber, kInsets}), 73)
      << "nothing fits into a maximum that is not a number";
  EXPECT_EQ(sizeShown(wide), -4);
  EXPECT_EQ(columnWidth({wide, notANumber}, {73, 400, kInsets}), 316);
  EXPECT_EQ(sizeShown(notANumber), -4);
  EXPECT_EQ(columnWidth({wide}, {73, kBoundless, kInsets}), 316);
  EXPECT_EQ(columnWidth({sizedArtwork(-500, cache_)}), 73);
  EXPECT_EQ(columnWidth({sizedArtwork(kBoundless, cache_)}), 73);
  const auto nothing = std::make_shared<const SizedTransitArtwork>(nullptr, 3, nullptr);
  EXPECT_EQ(columnWidth({nothing}), 73);
  EXPECT_TRUE(
      Calculator({wide}, {73, 200, kInsets}).calculateArtworkViewWidthAndArtworkSizes(nullptr).size() == 1U);
}

/// The definition: the widest artwork shrinks by one step, then all are sorted again.
std::pair<double, SmallerArtworks> modelOf(const Artworks& artworks, const Parameter& given) {
  const Parameter parameter = Calculator({}, given).sizeParameter();
  SmallerArtworks smaller;
  const auto effective = [&](const SharedSizedArtwork& artwork) {
    const auto found = smaller.find(artwork);
    return found == smaller.end() ? artwork : found->second;
  };
  const auto widthOf = [&](const SharedSizedArtwork& artwork) {
    return effective(artwork)->image(2)->size().width;
  };
  Artworks working = artworks;
  const auto sort = [&] {
    std::stable_sort(working.begin(), working.end(),
                     [&](const auto& a, const auto& b) { return widthOf(a) < widthOf(b); });
  };
  sort();
  while (!working.empty()) {
    const SharedSizedArtwork widest = working.back(), shown = effective(widest);
    const double width = widthOf(widest) + parameter.artworkInsets.left + parameter.artworkInsets.right;
    if (width <= parameter.defaultArtworkViewWidth) break;
    if (width <= parameter.maxArtworkViewWidth) return {width, smaller};
    if (shown->shieldSize() < -3) {
      working.pop_back();
      continue;
    }
    smaller[widest] = std::make_shared<const SizedTransitArtwork>(
        shown->artworkDataSource(), shown->shieldSize() - 1, shown->artworkCache());
    sort();
  }
  return {parameter.defaultArtworkViewWidth, smaller};
}

TEST_F(ArtworkColumn, AgreesWithShrinkingTheWidestStepByStep) {
  std::mt19937 random(20261124);
  const auto between = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int round = 0; round < 120; ++round) {
    Artworks artworks;
    for (int i = between(0, 12); i > 0; --i) {
      // Few different widths, so that equal artworks and equal widths are common.
      artworks.push_back(sizedArtwork(40 * between(0, 20), cache_, between(-6, 4), i % 3 == 0 ? "A" : "B"));
    }
    const Parameter parameter{
        double(between(-1, 3) * 40), double(between(-1, 10) * 30), {5, double(between(0, 2) * 8), 5, 16}};
    const auto [expectedWidth, expected] = modelOf(artworks, parameter);
    ASSERT_EQ(columnWidth(artworks, parameter), expectedWidth) << "round " << round;
    ASSERT_EQ(smaller_.size(), expected.size()) << "round " << round;
    for (const auto& [artwork, replacement] : expected) ASSERT_TRUE(*smaller_.at(artwork) == *replacement);
  }
}

TEST_F(ArtworkColumn, DrawsEachDistinctArtworkOncePerSizeAtTheDisplaysScale) {
  platform_->changeWorld([](auto& world) { world.scale = 3; });
  Artworks artworks;
  for (int i = 0; i < 50; ++i) {
    artworks.push_back(sizedArtwork(300, cache_));     // sizes 3, 2, 1, 0, -1
    artworks.push_back(sizedArtwork(300, cache_, 1));  // sizes 1, 0, -1 of the same
    artworks.push_back(sizedArtwork(100, cache_));
  }
  columnWidth(artworks);
  EXPECT_EQ(counted_.shields->drawn, 6U);
  EXPECT_EQ(counted_.shields->scales.size(), 1U);
  EXPECT_EQ(counted_.shields->scales.count(3), 1U);
}

// ---- Items ----

SharedTransitItem itemWith(std::shared_ptr<const ArtworkImageSource> source, std::string text = "Delays") {
  return std::make_shared<const RVTransitItem>(
      std::move(text), std::nullopt, std::make_shared<const RVConfiguredArtwork>(std::move(source), 0.5),
      true, nullptr);
}

class ArtworkColumnItems : public ArtworkColumn {
 protected:
  TransitItems fit(const TransitItems& items, const Parameter& parameter = {73, 200, kInsets}) {
    return calculator_.itemsFromItems(items, parameter, &width_,
                                      [this](const auto& item, const auto& artwork) {
                                        rebuilt_.push_back(item);
                                        return itemWith(artwork, item->primaryText().value_or(""));
                                      });
  }
  static std::int64_t sizeOf(const SharedTransitItem& item) {
    return std::dynamic_pointer_cast<const SizedTransitArtwork>(item->artwork()->artworkSource())
        ->shieldSize();
  }

  RVTransitItemArtworkColumnCalculator calculator_;
  double width_ = -1;
  TransitItems rebuilt_;
};

TEST_F(ArtworkColumnItems, RebuildsOnlyItemsWhoseArtworkShrank) {
  const TransitItems items = {
      itemWith(sizedArtwork(300, cache_), "wide"),
      itemWith(std::make_shared<const NamedImage>("Picture")),
      itemWith(nullptr),
      std::make_shared<const RVTransitItem>(std::nullopt, std::nullopt, nullptr, true, nullptr),
      nullptr,
      itemWith(sizedArtwork(100, cache_)),
      itemWith(sizedArtwork(300, cache_), "as wide")};
  const TransitItems fitted = fit(items);
  EXPECT_EQ(width_, 166);
  ASSERT_EQ(fitted.size(), items.size());
  for (const std::size_t row : {0U, 6U}) {
    EXPECT_EQ(sizeOf(fitted[row]), -1) << "lines with several incidents have equal artworks";
    EXPECT_EQ(fitted[row]->primaryText(), items[row]->primaryText());
  }
  for (const std::size_t row : {1U, 2U, 3U, 4U, 5U}) EXPECT_EQ(fitted[row], items[row]) << row;
  EXPECT_EQ(rebuilt_, TransitItems({items[0], items[6]}));
}

TEST_F(ArtworkColumnItems, KeepsItemsThatAreNotRebuilt) {
  const TransitItems items = {itemWith(sizedArtwork(300, cache_))};
  EXPECT_EQ(calculator_.itemsFromItems(items, {73, 200, kInsets}, nullptr, nullptr), items);
  RVTransitItemArtworkColumnCalculator other;
  const auto refuse = [](const auto&, const auto&) { return SharedTransitItem(); };
  EXPECT_EQ(other.itemsFromItems(items, {73, 200, kInsets}, &width_, refuse), items);
  EXPECT_EQ(width_, 166);
}

TEST_F(ArtworkColumnItems, AnswersARepeatedCallWithoutDrawing) {
  const auto sameItems = [this] {
    return TransitItems{itemWith(sizedArtwork(300, cache_)), itemWith(sizedArtwork(90, cache_))};
  };
  const TransitItems first = fit(sameItems());
  cache_->purge();
  const std::size_t drawn = counted_.shields->drawn;
  width_ = -1;
  EXPECT_EQ(fit(sameItems()), first) << "equal items, other objects";
  EXPECT_EQ(width_, 166);
  EXPECT_EQ(rebuilt_.size(), 1U);
  EXPECT_EQ(counted_.shields->drawn, drawn);

  // Each of these calls differs from the last one.
  const std::vector<Parameter> others = {{74, 200, kInsets},       {73, 201, kInsets},
                                         {73, 200, {1, 0, 0, 16}}, {73, 200, {0, 1, 0, 16}},
                                         {73, 200, {0, 0, 1, 16}}, {73, 200, {0, 0, 0, 17}}};
  for (const Parameter& other : others) {
    fit(sameItems());
    cache_->purge();
    const std::size_t before = counted_.shields->drawn;
    fit(sameItems(), other);
    EXPECT_GT(counted_.shields->drawn, before);
  }
  const TransitItems fewer = {sameItems().front()};
  EXPECT_EQ(fit(fewer).size(), 1U);
  EXPECT_EQ(fit({}), TransitItems());
  EXPECT_EQ(width_, 73);
}

TEST_F(ArtworkColumnItems, KeepsTheParametersAsGiven) {
  fit({itemWith(sizedArtwork(30, cache_))}, {-1, -1, kInsets});
  EXPECT_EQ(width_, 50);
  cache_->purge();
  const std::size_t drawn = counted_.shields->drawn;
  fit({itemWith(sizedArtwork(30, cache_))}, {-1, -1, kInsets});
  EXPECT_EQ(counted_.shields->drawn, drawn);
}

// ---- The cache ----

TEST_F(ArtworkColumn, TheWidgetsCacheDrawsLikeThePlatformUntilItIsPurged) {
  const auto cache = memoryConstrainedImageViewCache();
  const auto widthOf = [&](TransitArtworkDataSource artwork, std::int64_t size) {
    const auto image = cache->image(artwork, {size, 2});
    return image ? image->size().width : -1;
  };
  TransitArtworkDataSource shield;
  EXPECT_EQ(widthOf(shield, 3), 10) << "an empty description";
  shield.shieldDataSource = ShieldDataSource{0, "S\u00fc1", std::nullopt, std::nullopt};
  EXPECT_EQ(widthOf(shield, 3), 34);
  EXPECT_EQ(widthOf(shield, 7), 34 * 1.5);
  EXPECT_EQ(widthOf(shield, -4), 34 * 0.125);
  EXPECT_EQ(widthOf(shield, -100), 0);
  shield.intrinsicWidth = 40;
  EXPECT_EQ(widthOf(shield, 3), 40);
  TransitArtworkDataSource icon;
  icon.artworkSourceType = kArtworkSourceIcon;
  EXPECT_EQ(widthOf(icon, 3), 20);
  icon.iconDataSource = IconDataSource{};
  EXPECT_EQ(widthOf(icon, 1), 15);

  const auto image = cache->image(icon, {1, 2});
  EXPECT_EQ(cache->image(icon, {1, 2}), image);
  cache->purge();
  EXPECT_NE(cache->image(icon, {1, 2}), image);
  EXPECT_EQ(platform_->transcript().countOf("cachePurged"), 1U);
  EXPECT_NE(memoryConstrainedImageViewCache(), cache);
}

}  // namespace
}  // namespace linewatch
