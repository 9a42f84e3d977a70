#pragma once

#include <memory>

#include "platform/artwork_image_source.h"
#include "platform/ui/image_view.h"

namespace linewatch::ui {

/// Shows a row's artwork at its own size.
class ArtworkImageView final : public ImageView {
 public:
  const std::shared_ptr<const ArtworkImageSource>& imageSource() const { return imageSource_; }
  /// Null for no artwork.
  void setImageSource(std::shared_ptr<const ArtworkImageSource> imageSource);

 private:
  std::shared_ptr<const ArtworkImageSource> imageSource_;
};

}  // namespace linewatch::ui
