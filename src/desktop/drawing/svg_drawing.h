#pragma once

#include <QByteArray>
#include <array>
#include <memory>

#include "ui/image.h"

class QPainter;
class QSvgRenderer;

namespace linewatch::desktop {

/// An SVG drawing in points. `currentColor` in it is the appearance's label colour.
class SvgDrawing final : public ui::Image {
 public:
  /// If `dark` is empty, dark appearances use `light` too; only the label colour differs.
  SvgDrawing(QByteArray light, QByteArray dark);
  ~SvgDrawing() override;

  ui::Size size() const override { return size_; }
  void paint(QPainter& painter, const ui::Rect& rect, ui::Appearance appearance) const;

 private:
  QSvgRenderer& renderer(ui::Appearance appearance) const;

  QByteArray light_, dark_;
  ui::Size size_;
  /// Each is made when it is first drawn.
  mutable std::array<std::unique_ptr<QSvgRenderer>, 4> renderers_;
};

}  // namespace linewatch::desktop
