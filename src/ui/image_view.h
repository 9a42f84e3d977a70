#pragma once

#include <memory>

#include "ui/image.h"
#include "ui/view.h"

namespace linewatch::ui {

/// Shows an image in the middle of the view, scaled down in proportion when the view is smaller.
class ImageView : public View {
 public:
  const std::shared_ptr<const Image>& image() const { return image_; }
  /// Null shows nothing.
  void setImage(std::shared_ptr<const Image> image);

  std::optional<double> intrinsicWidth() override;
  std::optional<double> intrinsicHeight(double width) override;
  void draw(Canvas& canvas) override;

 private:
  std::shared_ptr<const Image> image_;
};

}  // namespace linewatch::ui
