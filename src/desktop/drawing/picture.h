#pragma once

#include <QImage>
#include <filesystem>
#include <optional>

#include "shared/error.h"
#include "ui/color.h"
#include "ui/view.h"

namespace linewatch::desktop {

/// The style of a picture of a view.
struct PictureStyle {
  /// In points. A view of another size is laid out again.
  ui::Size size;
  /// Pixels per point. Edges and baselines lie on these pixels.
  double scale = 2;
  ui::Appearance appearance = ui::Appearance::light;
};

/// The greatest height of a picture of this width, in points. A picture has at most 16,384 pixels per side
/// and 128 million in all.
double tallestPicture(double width, double scale);

/// Draws the view on the appearance's background. Absent if the size is not positive or exceeds the limit of
/// a picture. Sets the view's size and scale to those of the style. Needs a QGuiApplication.
std::optional<QImage> imageOf(ui::View& view, const PictureStyle& style);

/// Writes the view as PNG, SVG or PDF, according to the file's extension. A PDF has text as text. An SVG has
/// it as outlines, so that it looks the same without the fonts. In both, emoji are images. If writing fails,
/// the file is unchanged.
std::optional<Error> savePicture(ui::View& view, const PictureStyle& style,
                                 const std::filesystem::path& file);

}  // namespace linewatch::desktop
