#pragma once

#include <QPaintEvent>
#include <QPainter>
#include <QPalette>
#include <QRectF>

namespace linewatch::desktop {

/// Draws the ring around a part that has the keyboard's focus, inside of its rectangle.
void paintFocusRing(QPainter& painter, const QRectF& rect, const QPalette& palette);

/// A button with that ring. The styles of many desktops mark the focus with colours that are hard to tell
/// apart.
template <class Button>
class RingedButton : public Button {
 public:
  using Button::Button;

 protected:
  void paintEvent(QPaintEvent* event) override {
    Button::paintEvent(event);
    if (!Button::hasFocus()) return;
    QPainter painter(this);
    paintFocusRing(painter, QRectF(Button::rect()), Button::palette());
  }
};

}  // namespace linewatch::desktop
