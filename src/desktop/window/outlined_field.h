#pragma once

#include <QLineEdit>
#include <QPainter>

namespace linewatch::desktop {

/// The space between a field's outline and its text, in points.
inline constexpr int kFieldInset = 7;

/// Draws the rounded outline of a field inside of `rect`.
void paintFieldOutline(QPainter& painter, const QRect& rect, const QPalette& palette, bool hasFocus);

/// An input field with a rounded outline. The class paints the outline itself, because a style sheet keeps
/// the old colours when the palette changes.
class OutlinedField final : public QLineEdit {
 public:
  OutlinedField();

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace linewatch::desktop
