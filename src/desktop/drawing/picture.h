#pragma once

#include <QImage>
#include <filesystem>
#include <optional>

#include "shared/error.h"
#include "ui/color.h"
#include "ui/view.h"

namespace linewatch::desktop {

/// How a view is drawn into a picture.
struct PictureStyle {
  /// In points. A view of another size is laid out again.
  ui::Size size;
  /// Pixels per point. Edges and baselines are aligned to these pixels.
  double scale = 2;
  ui::Appearance appearance = ui::Appearance::light;
};

/// The greatest height of a picture of this width, in points. A picture has at most 16,384 pixels per side
/// and 128 million in all.
double tallestPicture(double width, double scale);

/// Draws the view on the appearance's background. Absent when the size is not positive or too large for a
/// picture. The view keeps the style's size and scale. Needs a QGuiApplication.
std::optional<QImage> imageOf(ui::View& view, const PictureStyle& style);

/// Writes the view as PNG, SVG or PDF, by the file's extension. Text becomes text in a PDF, and outlines in
/// an SVG so that it looks the same without the fonts. Emoji become images in both. The file is written
/// completely or not at all.
std::optional<Error> savePicture(ui::View& view, const PictureStyle& style,
                                 const std::filesystem::path& file);

}  // namespace linewatch::desktop
