#pragma once

#include <memory>
#include <optional>

#include "ui/artwork_image_source.h"
#include "ui/image_view.h"

namespace linewatch::ui {

/// Shows a row's artwork at its own size, drawn for the display that it is on.
class ArtworkImageView final : public ImageView {
 public:
  const std::shared_ptr<const ArtworkImageSource>& imageSource() const { return imageSource_; }
  /// Null for no artwork.
  void setImageSource(std::shared_ptr<const ArtworkImageSource> imageSource);

  std::optional<double> intrinsicWidth() override;

 private:
  void loadImage();

  std::shared_ptr<const ArtworkImageSource> imageSource_;
  /// Pixels a point that the image was made for.
  double imageScale_ = 0;
};

}  // namespace linewatch::ui
