#pragma once

#include <memory>
#include <optional>
#include <string>

#include "desktop/drawing/shield_outline.h"
#include "ui/artwork_cache.h"
#include "ui/image.h"
#include "ui/text_engine.h"

namespace linewatch::desktop {

/// A line's shield: the line's text on the line's colour, in the shape of its mode. If the colour is close to
/// the background, it has an outline.
class LineShield final : public ui::Image {
 public:
  /// The size of the text at size step 3 and the default text size, in points. Each step adds or removes one
  /// point.
  static constexpr double kTextSizeAtStep3 = 15;
  /// `text` must not be empty. `widthAtStep3`: see ShieldManager.
  LineShield(const ShieldDataSource& shield, const std::string& text, std::optional<double> widthAtStep3,
             const ArtworkSize& size);

  ui::Size size() const override { return size_; }
  /// Draws the shield in its own size, in the middle of the rectangle.
  void draw(ui::Canvas& canvas, const ui::Rect& rect) const override;

 private:
  void drawShape(ui::Canvas& canvas, const ui::Rect& rect) const;

  const ShieldForm& form_;
  std::string fill_;
  std::string textColor_;
  std::shared_ptr<const ui::TextLayout> text_;
  double capHeight_ = 0;
  ui::Size size_;
};

/// Makes shields. Needs a QGuiApplication.
class LineShieldManager final : public ShieldManager {
 public:
  /// `direction` decides on which side a no-entry sign is.
  explicit LineShieldManager(ui::LayoutDirection direction = ui::LayoutDirection::leftToRight)
      : isMirrored_(direction == ui::LayoutDirection::rightToLeft) {}

  std::shared_ptr<const ui::Image> image(const ShieldDataSource& shield, std::optional<double> widthAtStep3,
                                         const ArtworkSize& size) override;
  std::shared_ptr<const ui::Image> withIncidentBadge(std::shared_ptr<const ui::Image> image,
                                                     const ArtworkSize& size) override;

 private:
  bool isMirrored_;
};

/// The height of shields and icons at a size step, in points.
double artworkHeight(const ArtworkSize& size);

}  // namespace linewatch::desktop
