#pragma once

#include <memory>

#include "ui/image.h"
#include "ui/view.h"

namespace linewatch::ui {

/// Shows an image, scaled down in proportion where the view is smaller, in the middle of the view.
class ImageView : public View {
 public:
  const std::shared_ptr<const Image>& image() const { return image_; }
  /// Null for no image.
  void setImage(std::shared_ptr<const Image> image);

  std::optional<double> intrinsicWidth() override;
  std::optional<double> intrinsicHeight(double width) override;
  void draw(Canvas& canvas) override;

 private:
  std::shared_ptr<const Image> image_;
};

}  // namespace linewatch::ui
