#include "desktop/drawing/incident_badge.h"

#include <utility>

#include "ui/canvas.h"

namespace linewatch::desktop {

namespace {

/// The sign's diameter, as a fraction of the image's height.
constexpr double kDiameter = 0.54;
/// The parts of the sign, as fractions of its diameter.
constexpr double kRim = 0.09;
constexpr double kBarWidth = 0.52;
constexpr double kBarHeight = 0.16;
/// The part of the sign that is beside the image. The rest covers the space that a shield has next to its
/// text.
constexpr double kOverhang = 0.5;

constexpr ui::RGBA kRed{0.80, 0.07, 0.12, 1};
// A light rim separates the sign from a red shield and from a dark background.
constexpr ui::RGBA kWhite{1, 1, 1, 1};

void fillCentered(ui::Canvas& canvas, const ui::Point& center, const ui::Size& size, double radius,
                  const ui::RGBA& color) {
  canvas.fillRoundedRect({center.x - size.width / 2, center.y - size.height / 2, size.width, size.height},
                         radius, color);
}

}  // namespace

IncidentBadge::IncidentBadge(std::shared_ptr<const ui::Image> image, bool isMirrored, double scale)
    : image_(std::move(image)), isMirrored_(isMirrored) {
  const ui::Size plain = image_->size();
  diameter_ = ui::ceiledToPixel(kDiameter * plain.height, scale);
  overhang_ = ui::ceiledToPixel(kOverhang * diameter_, scale);
  size_ = {plain.width + overhang_, plain.height};
}

void IncidentBadge::draw(ui::Canvas& canvas, const ui::Rect& rect) const {
  const auto inMiddle = [&](double length, double space) {
    return ui::snappedToPixel((space - length) / 2, canvas.scale());
  };
  const ui::Point corner{rect.x + inMiddle(size_.width, rect.width),
                         rect.y + inMiddle(size_.height, rect.height)};
  const ui::Size plain = image_->size();
  image_->draw(canvas, {corner.x + (isMirrored_ ? overhang_ : 0), corner.y, plain.width, plain.height});
  const double x = isMirrored_ ? diameter_ / 2 : size_.width - diameter_ / 2;
  drawSign(canvas, {corner.x + x, corner.y + diameter_ / 2});
}

void IncidentBadge::drawSign(ui::Canvas& canvas, const ui::Point& center) const {
  const double red = diameter_ * (1 - 2 * kRim);
  const ui::Size bar{diameter_ * kBarWidth, diameter_ * kBarHeight};
  fillCentered(canvas, center, {diameter_, diameter_}, diameter_ / 2, kWhite);
  fillCentered(canvas, center, {red, red}, red / 2, kRed);
  fillCentered(canvas, center, bar, bar.height / 4, kWhite);
}

}  // namespace linewatch::desktop
