#pragma once

#include <QByteArray>
#include <array>
#include <memory>

#include "ui/image.h"

class QPainter;
class QSvgRenderer;

namespace linewatch::desktop {

/// An SVG drawing; its units are points. What it draws in `currentColor` takes the label's colour of the
/// appearance that it is drawn for.
class SvgDrawing final : public ui::Image {
 public:
  /// `dark` may be empty: the drawing then looks alike in both appearances, but for the label's colour.
  SvgDrawing(QByteArray light, QByteArray dark);
  ~SvgDrawing() override;

  ui::Size size() const override { return size_; }
  void paint(QPainter& painter, const ui::Rect& rect, ui::Appearance appearance) const;

 private:
  QSvgRenderer& renderer(ui::Appearance appearance) const;

  QByteArray light_, dark_;
  ui::Size size_;
  /// Made when first drawn.
  mutable std::array<std::unique_ptr<QSvgRenderer>, 2> renderers_;
};

}  // namespace linewatch::desktop
