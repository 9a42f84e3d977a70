#include "desktop/drawing/mode_icon.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "desktop/drawing/line_shield.h"

namespace linewatch::desktop {

namespace {

// In the order of TransitMode.
constexpr std::array<std::string_view, 8> kDrawings = {"",          "mode-bus",   "mode-tram",  "mode-metro",
                                                       "mode-rail", "mode-ferry", "mode-cable", "mode-air"};

/// A drawing scaled to another size, in the middle of its rectangle.
class ModeIcon final : public ui::Image {
 public:
  ModeIcon(std::shared_ptr<const ui::Image> drawing, const ui::Size& size)
      : drawing_(std::move(drawing)), size_(size) {}

  ui::Size size() const override { return size_; }
  void draw(ui::Canvas& canvas, const ui::Rect& rect) const override {
    const double side = std::min(rect.width, rect.height);
    drawing_->draw(canvas, {rect.x + (rect.width - side) / 2, rect.y + (rect.height - side) / 2, side, side});
  }

 private:
  std::shared_ptr<const ui::Image> drawing_;
  ui::Size size_;
};

}  // namespace

std::shared_ptr<const ui::Image> ModeIconManager::image(const IconDataSource& icon,
                                                        std::optional<double> widthAtStep3,
                                                        const ArtworkSize& size) {
  const auto mode = static_cast<std::size_t>(icon.defaultTransitType);
  if (mode >= kDrawings.size() || kDrawings.at(mode).empty()) return nullptr;
  const double height = artworkHeight(size);
  const double share = height / artworkHeight({3, size.scale});
  const double width =
      widthAtStep3 && *widthAtStep3 > 0 ? std::min(*widthAtStep3, ui::kLongestLength) * share : height;
  return std::make_shared<ModeIcon>(drawings_->imageNamed(kDrawings.at(mode)),
                                    ui::Size{ui::ceiledToPixel(width, size.scale), height});
}

}  // namespace linewatch::desktop
