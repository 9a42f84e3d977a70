#pragma once

#include <QByteArray>
#include <array>
#include <memory>

#include "ui/image.h"

class QPainter;
class QSvgRenderer;

namespace linewatch::desktop {

/// An SVG drawing whose unit is a point. Its `currentColor` is the label colour of the appearance.
class SvgDrawing final : public ui::Image {
 public:
  /// `dark` may be empty. The drawing then looks the same in both appearances, except for the label colour.
  SvgDrawing(QByteArray light, QByteArray dark);
  ~SvgDrawing() override;

  ui::Size size() const override { return size_; }
  void paint(QPainter& painter, const ui::Rect& rect, ui::Appearance appearance) const;

 private:
  QSvgRenderer& renderer(ui::Appearance appearance) const;

  QByteArray light_, dark_;
  ui::Size size_;
  /// Each is made when it is first drawn.
  mutable std::array<std::unique_ptr<QSvgRenderer>, 2> renderers_;
};

}  // namespace linewatch::desktop
