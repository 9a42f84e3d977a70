#include "desktop/drawing/picture.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <algorithm>
#include <cmath>
#include <functional>
#include <string>

#include "desktop/drawing/qt_canvas.h"
#include "shared/failure.h"
#include "shared/file_contents.h"

namespace linewatch::desktop {

namespace {

constexpr double kLongestSide = 16384;
constexpr double kMostPixels = 128e6;
// Qt divides this by 11 to get zlib's level. Higher levels take three times as long, and flat areas and text
// hardly become smaller.
constexpr int kPngCompression = 11;

struct PixelSize {
  int width = 0;
  int height = 0;
};

std::optional<PixelSize> pixelsOf(const PictureStyle& style) {
  const double width = std::ceil(style.size.width * style.scale - 1e-6);
  const double height = std::ceil(style.size.height * style.scale - 1e-6);
  const auto isPossible = [](double side) { return side >= 1 && side <= kLongestSide; };
  if (!isPossible(width) || !isPossible(height) || width * height > kMostPixels) return std::nullopt;
  return PixelSize{static_cast<int>(width), static_cast<int>(height)};
}

void layOut(ui::View& view, const PictureStyle& style) {
  view.setDisplayScale(style.scale);
  view.setFrame({0, 0, style.size.width, style.size.height});
  view.layoutIfNeeded();
}

void draw(ui::View& view, const PictureStyle& style, QPainter& painter, CanvasKind kind) {
  QtCanvas canvas(painter, style.appearance, style.scale, kind);
  canvas.fillRect({0, 0, style.size.width, style.size.height}, ui::SemanticColor::background);
  view.render(canvas);
}

bool writePng(ui::View& view, const PictureStyle& style, QIODevice& device) {
  const std::optional<QImage> image = imageOf(view, style);
  QImageWriter writer(&device, "png");
  writer.setCompression(kPngCompression);
  return image && writer.write(*image);
}

bool writeSvg(ui::View& view, const PictureStyle& style, QIODevice& device) {
  QSvgGenerator generator;
  generator.setOutputDevice(&device);
  // At this resolution Qt's unit of length is a pixel. The view box maps it to a point.
  generator.setResolution(96);
  generator.setViewBox(QRectF(0, 0, style.size.width, style.size.height));
  generator.setSize(QSizeF(style.size.width, style.size.height).toSize());
  generator.setTitle(QStringLiteral("LineWatch"));
  layOut(view, style);
  QPainter painter;
  if (!painter.begin(&generator)) return false;
  draw(view, style, painter, CanvasKind::outlines);
  return painter.end();
}

bool writePdf(ui::View& view, const PictureStyle& style, QIODevice& device) {
  constexpr int kPointsAnInch = 72;
  QPdfWriter writer(&device);
  writer.setTitle(QStringLiteral("LineWatch"));
  writer.setPageSize(
      QPageSize(QSizeF(style.size.width, style.size.height), QPageSize::Point, {}, QPageSize::ExactMatch));
  writer.setPageMargins({});
  layOut(view, style);
  QPainter painter;
  if (!painter.begin(&writer)) return false;
  const double unitsAPoint = static_cast<double>(writer.resolution()) / kPointsAnInch;
  painter.scale(unitsAPoint, unitsAPoint);
  draw(view, style, painter, CanvasKind::text);
  return painter.end();
}

using Writing = bool (*)(ui::View&, const PictureStyle&, QIODevice&);

Writing writingFor(const std::filesystem::path& file) {
  const QString extension = QString::fromStdString(file.extension().string()).toLower();
  if (extension == ".png") return writePng;
  if (extension == ".svg") return writeSvg;
  return extension == ".pdf" ? writePdf : nullptr;
}

}  // namespace

double tallestPicture(double width, double scale) {
  const double columns = std::max(1.0, std::ceil(width * scale));
  return std::floor(std::min(kLongestSide, kMostPixels / columns)) / scale;
}

std::optional<QImage> imageOf(ui::View& view, const PictureStyle& style) {
  const std::optional<PixelSize> pixels = pixelsOf(style);
  if (!pixels) return std::nullopt;
  layOut(view, style);
  QImage image(pixels->width, pixels->height, QImage::Format_RGB32);
  image.fill(qtColor(ui::SemanticColor::background, style.appearance));
  QPainter painter(&image);
  painter.scale(style.scale, style.scale);
  draw(view, style, painter, CanvasKind::full);
  return image;
}

std::optional<Error> savePicture(ui::View& view, const PictureStyle& style,
                                 const std::filesystem::path& file) {
  constexpr std::string_view kWhat = "cannot write the picture";
  const Writing write = writingFor(file);
  if (write == nullptr) return failure(kWhat, file.string(), "the name must end in .png, .svg or .pdf");
  if (!pixelsOf(style)) return failure(kWhat, file.string(), "the size is not possible for a picture");
  // The picture is made in memory first, because some of Qt's writers do not report a full disk.
  QBuffer picture;
  picture.open(QIODevice::WriteOnly);
  if (!write(view, style, picture)) return failure(kWhat, file.string(), "it cannot be drawn");
  const QByteArray& bytes = picture.data();
  const auto error = writeWhole(file, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
  return error ? std::optional(within(kWhat, *error)) : std::nullopt;
}

}  // namespace linewatch::desktop
