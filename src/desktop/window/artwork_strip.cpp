#include "desktop/window/artwork_strip.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/drawing/qt_canvas.h"
#include "desktop/window/widget_role.h"
#include "desktop/window/window_colors.h"
#include "ui/image.h"

namespace linewatch::desktop {

namespace {

// Points between artworks, horizontally and vertically.
constexpr double kGap = 6;

}  // namespace

ArtworkStrip::ArtworkStrip(const std::vector<SharedArtwork>& artworks, std::int64_t step,
                           std::shared_ptr<ArtworkDataSourceCache> cache)
    : step_(step), cache_(std::move(cache)) {
  for (const SharedArtwork& artwork : artworks) {
    const auto image = imageOf(artwork, 1);
    if (!image) continue;
    artworks_.push_back(artwork);
    sizes_.emplace_back(image->size().width, image->size().height);
  }
  setAccessibleRole(*this, QAccessible::Graphic);
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
}

std::shared_ptr<const ui::Image> ArtworkStrip::imageOf(const SharedArtwork& artwork, double scale) const {
  return artwork ? cache_->image(*artwork, {step_, scale}) : nullptr;
}

std::vector<QRectF> ArtworkStrip::places(double width) const {
  std::vector<QRectF> places;
  double x = 0;
  double y = 0;
  double rowHeight = 0;
  for (const QSizeF& size : sizes_) {
    if (x > 0 && x + size.width() > width) {
      x = 0;
      y += std::exchange(rowHeight, 0) + kGap;
    }
    places.emplace_back(QPointF(x, y), size);
    x += size.width() + kGap;
    rowHeight = std::max(rowHeight, size.height());
  }
  return places;
}

int ArtworkStrip::heightForWidth(int width) const {
  double bottom = 0;
  for (const QRectF& place : places(width)) bottom = std::max(bottom, place.bottom());
  return static_cast<int>(std::ceil(bottom));
}

QSize ArtworkStrip::sizeHint() const {
  double width = 0;
  for (const QSizeF& size : sizes_) width += size.width() + (width > 0 ? kGap : 0);
  const int whole = static_cast<int>(std::ceil(width));
  return {whole, heightForWidth(whole)};
}

QSize ArtworkStrip::minimumSizeHint() const {
  double width = 0;
  for (const QSizeF& size : sizes_) width = std::max(width, size.width());
  return {static_cast<int>(std::ceil(width)), sizeHint().height()};
}

void ArtworkStrip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QtCanvas canvas(painter, appearanceOf(palette()), devicePixelRatioF());
  const std::vector<QRectF> places = this->places(width());
  for (std::size_t i = 0; i < places.size(); ++i) {
    const QRectF& place = places[i];
    const double x = layoutDirection() == Qt::RightToLeft ? width() - place.right() : place.left();
    imageOf(artworks_[i], devicePixelRatioF())->draw(canvas, {x, place.top(), place.width(), place.height()});
  }
}

}  // namespace linewatch::desktop
