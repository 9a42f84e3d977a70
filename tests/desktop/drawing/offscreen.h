#pragma once

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include "desktop/drawing/offscreen_application.h"
#include "desktop/drawing/qt_canvas.h"

namespace linewatch::desktop {

/// Makes the process's application on the first call.
inline void needOffscreenApplication() {
  static const std::unique_ptr<QGuiApplication> application = makeOffscreenApplication();
}

/// A white image, and a canvas that draws on it.
class Sheet {
 public:
  Sheet(double width, double height, double scale, ui::Appearance appearance = ui::Appearance::light)
      : image_(static_cast<int>(width * scale), static_cast<int>(height * scale), QImage::Format_RGB32),
        painter_(prepared(image_)),
        canvas_((painter_.scale(scale, scale), painter_), appearance, scale) {}

  QtCanvas& canvas() { return canvas_; }
  QColor pixel(int x, int y) const { return image_.pixelColor(x, y); }
  const QImage& image() const { return image_; }
  bool isWhite(int x, int y) const { return pixel(x, y) == QColor(Qt::white); }
  /// Whether any pixel of the row is not white.
  bool hasInk(int y) const {
    for (int x = 0; x < image_.width(); ++x) {
      if (!isWhite(x, y)) return true;
    }
    return false;
  }

 private:
  static QImage* prepared(QImage& image) {
    image.fill(Qt::white);
    return &image;
  }

  QImage image_;
  QPainter painter_;
  QtCanvas canvas_;
};

}  // namespace linewatch::desktop
