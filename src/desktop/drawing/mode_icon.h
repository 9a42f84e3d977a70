#pragma once

#include <memory>

#include "desktop/drawing/drawing_source.h"
#include "ui/artwork_cache.h"

namespace linewatch::desktop {

/// Makes icons of modes of transport. They are as high as a shield of the same size step.
class ModeIconManager final : public IconManager {
 public:
  explicit ModeIconManager(std::shared_ptr<DrawingSource> drawings) : drawings_(std::move(drawings)) {}

  /// Null for a mode without an icon.
  std::shared_ptr<const ui::Image> image(const IconDataSource& icon, std::optional<double> widthAtStep3,
                                         const ArtworkSize& size) override;

 private:
  std::shared_ptr<DrawingSource> drawings_;
};

}  // namespace linewatch::desktop
