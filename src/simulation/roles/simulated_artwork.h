#pragma once

#include "simulation/world/backstage.h"
#include "ui/artwork_cache.h"
#include "ui/image.h"

namespace linewatch::simulation {

/// An artwork that is known by what it shows: a shield's text, or "icon". It is 20 points tall at size step
/// 3; each step up or down makes it larger or smaller by an eighth of that, in both directions.
class SimulatedArtworkImage final : public ui::Image {
 public:
  SimulatedArtworkImage(std::string name, double widthAtStep3, std::int64_t step);

  const std::string& name() const { return name_; }
  Size size() const override { return size_; }

 private:
  std::string name_;
  Size size_;
};

/// Shields as wide as described, else 10 points and 8 for each code point of the text. A purge is recorded as
/// "cachePurged".
class SimulatedShieldManager final : public ShieldManager {
 public:
  explicit SimulatedShieldManager(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::shared_ptr<const ui::Image> image(const ShieldDataSource& shield, std::optional<double> widthAtStep3,
                                         const ArtworkSize& size) override;
  void purge() override;

 private:
  SharedBackstage backstage_;
};

/// Icons as wide as described, else 20 points.
class SimulatedIconManager final : public IconManager {
 public:
  std::shared_ptr<const ui::Image> image(const IconDataSource& icon, std::optional<double> widthAtStep3,
                                         const ArtworkSize& size) override;
};

}  // namespace linewatch::simulation
