#include "ui/image_view.h"

#include <algorithm>
#include <utility>

namespace linewatch::ui {

void ImageView::setImage(std::shared_ptr<const Image> image) {
  if (image == image_) return;
  const Size before = image_ ? image_->size() : Size{};
  image_ = std::move(image);
  if ((image_ ? image_->size() : Size{}) != before) invalidateIntrinsicContentSize();
  setNeedsDisplay();
}

std::optional<double> ImageView::intrinsicWidth() { return image_ ? image_->size().width : 0; }

std::optional<double> ImageView::intrinsicHeight(double /*width*/) {
  return image_ ? image_->size().height : 0;
}

void ImageView::draw(Canvas& canvas) {
  if (!image_ || bounds().isEmpty()) return;
  const Size size = image_->size();
  if (!(size.width > 0 && size.height > 0)) return;
  const double shrink = std::min({1.0, frame().width / size.width, frame().height / size.height});
  const Size drawn{size.width * shrink, size.height * shrink};
  const Point origin{snappedToPixel((frame().width - drawn.width) / 2),
                     snappedToPixel((frame().height - drawn.height) / 2)};
  image_->draw(canvas, {origin.x, origin.y, drawn.width, drawn.height});
}

}  // namespace linewatch::ui
