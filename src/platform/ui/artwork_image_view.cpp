#include "platform/ui/artwork_image_view.h"

#include <utility>

namespace linewatch::ui {

void ArtworkImageView::setImageSource(std::shared_ptr<const ArtworkImageSource> imageSource) {
  imageSource_ = std::move(imageSource);
  setImage(imageSource_ ? imageSource_->image(displayScale()) : nullptr);
}

}  // namespace linewatch::ui
