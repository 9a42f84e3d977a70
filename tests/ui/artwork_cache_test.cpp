#include "ui/artwork_cache.h"

#include <gmock/gmock.h>

#include "ui/image.h"

namespace linewatch {
namespace {

struct Drawing final : ui::Image {
  ui::Size size() const override { return {}; }
};

struct CountingShieldManager final : ShieldManager {
  std::shared_ptr<const ui::Image> image(const ShieldDataSource& shield, std::optional<double>,
                                         const ArtworkSize&) override {
    ++drawn;
    return shield.shieldText ? picture : nullptr;
  }
  void purge() override { ++purged; }

  std::shared_ptr<const ui::Image> picture = std::make_shared<Drawing>();
  int drawn = 0;
  int purged = 0;
};

struct SingleIconManager final : IconManager {
  std::shared_ptr<const ui::Image> image(const IconDataSource& icon, std::optional<double>,
                                         const ArtworkSize&) override {
    return icon.defaultTransitType == 1 ? picture : nullptr;
  }

  std::shared_ptr<const ui::Image> picture = std::make_shared<Drawing>();
};

class ArtworkCache : public testing::Test {
 protected:
  std::shared_ptr<CountingShieldManager> shields_ = std::make_shared<CountingShieldManager>();
  std::shared_ptr<SingleIconManager> icons_ = std::make_shared<SingleIconManager>();
  ArtworkDataSourceCache cache_{std::make_shared<TransitArtworkManager>(shields_, icons_)};
  const ShieldDataSource shield_{.shieldText = "7"};
  const IconDataSource bus_{.defaultTransitType = 1};
  const IconDataSource unknown_{.defaultTransitType = 99};
};

TEST_F(ArtworkCache, DrawsTheNamedSourceElseAnotherOne) {
  const ArtworkSize size;
  const auto draw = [&](std::int64_t type, std::optional<ShieldDataSource> shield,
                        std::optional<IconDataSource> icon, std::optional<ShieldDataSource> fallback) {
    return cache_.image({.artworkSourceType = type,
                         .shieldDataSource = std::move(shield),
                         .iconDataSource = icon,
                         .iconFallbackShieldDataSource = std::move(fallback)},
                        size);
  };
  EXPECT_EQ(draw(kArtworkSourceShield, shield_, bus_, {}), shields_->picture);
  EXPECT_EQ(draw(kArtworkSourceIcon, shield_, bus_, {}), icons_->picture);
  EXPECT_EQ(draw(kArtworkSourceIcon, {}, unknown_, shield_), shields_->picture);
  EXPECT_EQ(draw(kArtworkSourceIcon, shield_, unknown_, {}), shields_->picture);
  EXPECT_EQ(draw(kArtworkSourceShield, ShieldDataSource{}, bus_, {}), icons_->picture);
  EXPECT_EQ(draw(0, {}, {}, {}), nullptr);
}

TEST_F(ArtworkCache, DrawsOnceForEachDescriptionAndSizeUntilItIsPurged) {
  const TransitArtworkDataSource seven{.shieldDataSource = shield_};
  TransitArtworkDataSource wide = seven;
  wide.intrinsicWidth = 80;
  for (int round = 0; round < 3; ++round) {
    EXPECT_NE(cache_.image(seven, {3, 2}), nullptr);
    EXPECT_NE(cache_.image(seven, {2, 2}), nullptr);
    EXPECT_NE(cache_.image(seven, {3, 1}), nullptr);
    EXPECT_NE(cache_.image(wide, {3, 2}), nullptr);
    EXPECT_EQ(cache_.image({.shieldDataSource = ShieldDataSource{}}, {3, 2}), nullptr);
  }
  EXPECT_EQ(shields_->drawn, 5);

  cache_.purge();
  EXPECT_EQ(shields_->purged, 1);
  EXPECT_NE(cache_.image(seven, {3, 2}), nullptr);
  EXPECT_EQ(shields_->drawn, 6);
}

}  // namespace
}  // namespace linewatch
