#pragma once

#include <memory>
#include <optional>

#include "ui/artwork_image_source.h"
#include "ui/image_view.h"
#include "ui/text_style.h"

namespace linewatch::ui {

/// Shows a row's artwork at its own size and at the display's resolution.
class ArtworkImageView final : public ImageView {
 public:
  const std::shared_ptr<const ArtworkImageSource>& imageSource() const { return imageSource_; }
  /// Null shows nothing.
  void setImageSource(std::shared_ptr<const ArtworkImageSource> imageSource);

  std::optional<double> intrinsicWidth() override;

 private:
  void loadImage();

  std::shared_ptr<const ArtworkImageSource> imageSource_;
  /// Pixels per point of the image.
  double imageScale_ = 0;
  TextSizeCategory imageTextSize_ = kDefaultTextSizeCategory;
};

}  // namespace linewatch::ui
