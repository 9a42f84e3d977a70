#include "ui/artwork_image_view.h"

#include <utility>

#include "platform/platform.h"
#include "ui/interface_settings.h"

namespace linewatch::ui {

namespace {

TextSizeCategory textSizeNow() { return platform().interfaceSettings().textSizeCategory(); }

}  // namespace

void ArtworkImageView::setImageSource(std::shared_ptr<const ArtworkImageSource> imageSource) {
  imageSource_ = std::move(imageSource);
  loadImage();
}

std::optional<double> ArtworkImageView::intrinsicWidth() {
  if (imageScale_ != displayScale() || imageTextSize_ != textSizeNow()) loadImage();
  return ImageView::intrinsicWidth();
}

void ArtworkImageView::loadImage() {
  imageScale_ = displayScale();
  imageTextSize_ = textSizeNow();
  setImage(imageSource_ ? imageSource_->image(imageScale_) : nullptr);
}

}  // namespace linewatch::ui
