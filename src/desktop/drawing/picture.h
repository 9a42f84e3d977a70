#pragma once

#include <QImage>
#include <filesystem>
#include <optional>

#include "shared/error.h"
#include "ui/color.h"
#include "ui/view.h"

namespace linewatch::desktop {

/// How a view is drawn apart from any window.
struct PictureStyle {
  /// Points; a view of another size is laid out anew.
  ui::Size size;
  /// Pixels a point, of the pixels and of the grid that edges and baselines stand on.
  double scale = 2;
  ui::Appearance appearance = ui::Appearance::light;
};

/// How high a picture of a width can be, in points: it has at most 16,384 pixels a side, and 128 million in
/// all.
double tallestPicture(double width, double scale);

/// The view on the appearance's background. Absent where the size is not positive or larger than pictures
/// are. The view keeps the size and the scale. Needs a QGuiApplication.
std::optional<QImage> imageOf(ui::View& view, const PictureStyle& style);

/// Writes the view as PNG, SVG or PDF, as the file's extension says. SVG and PDF have no pixels but for
/// glyphs that are pictures; text is text in a PDF and outlines in an SVG, so that it looks the same without
/// our fonts. The file is whole or not there.
std::optional<Error> savePicture(ui::View& view, const PictureStyle& style,
                                 const std::filesystem::path& file);

}  // namespace linewatch::desktop
