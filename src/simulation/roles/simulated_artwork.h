#pragma once

#include "simulation/world/backstage.h"
#include "ui/artwork_cache.h"
#include "ui/image.h"

namespace linewatch::simulation {

/// An artwork with the text of its shield, or "icon", as its name. It is 20 points tall at size step 3. Each
/// step up or down adds or removes an eighth of its width and height at step 3.
class SimulatedArtworkImage final : public ui::Image {
 public:
  SimulatedArtworkImage(std::string name, double widthAtStep3, std::int64_t step);

  const std::string& name() const { return name_; }
  Size size() const override { return size_; }

 private:
  std::string name_;
  Size size_;
};

/// Makes shields of the described width, else of the width that the world has for them, else of 10 points and
/// 8 more for each code point of the text. Records a purge as "cachePurged".
class SimulatedShieldManager final : public ShieldManager {
 public:
  explicit SimulatedShieldManager(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::shared_ptr<const ui::Image> image(const ShieldDataSource& shield, std::optional<double> widthAtStep3,
                                         const ArtworkSize& size) override;
  void purge() override;

 private:
  SharedBackstage backstage_;
};

/// Makes icons of the described width, else of the width that the world has for them, else of 20 points.
class SimulatedIconManager final : public IconManager {
 public:
  /// Without a backstage there is no world.
  explicit SimulatedIconManager(SharedBackstage backstage = nullptr) : backstage_(std::move(backstage)) {}

  std::shared_ptr<const ui::Image> image(const IconDataSource& icon, std::optional<double> widthAtStep3,
                                         const ArtworkSize& size) override;

 private:
  SharedBackstage backstage_;
};

}  // namespace linewatch::simulation
