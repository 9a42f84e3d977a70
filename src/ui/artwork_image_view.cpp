#include "ui/artwork_image_view.h"

#include <utility>

namespace linewatch::ui {

void ArtworkImageView::setImageSource(std::shared_ptr<const ArtworkImageSource> imageSource) {
  imageSource_ = std::move(imageSource);
  loadImage();
}

std::optional<double> ArtworkImageView::intrinsicWidth() {
  if (imageScale_ != displayScale()) loadImage();
  return ImageView::intrinsicWidth();
}

void ArtworkImageView::loadImage() {
  imageScale_ = displayScale();
  setImage(imageSource_ ? imageSource_->image(imageScale_) : nullptr);
}

}  // namespace linewatch::ui
