#pragma once

#include <QMargins>
#include <QObject>
#include <QPoint>
#include <QRectF>
#include <optional>

class QMouseEvent;
class QPainter;
class QWidget;

namespace linewatch::desktop {

/// The edge of the panel. Under a title bar the card fills the window. Without a title bar the card is the
/// window: it has round corners and a shadow, its header moves it and its sides resize it. Main thread.
class PanelFrame final : public QObject {
 public:
  /// To be made before the window is shown.
  explicit PanelFrame(QWidget& window);

  /// Both may be called while the window is visible; it stays visible.
  void setFrameless(bool isFrameless);
  void setStaysOnTop(bool staysOnTop);
  bool isFrameless() const;

  /// The space between the card and the window's edges, in points.
  QMargins margins() const;
  /// The radius of the card's corners, in points.
  double cornerRadius() const;
  void paint(QPainter& painter) const;

  /// Mouse events of the window. `header` is the rectangle that moves a frameless window.
  void mousePressed(QMouseEvent& event, const QRect& header);
  void mouseMoved(QMouseEvent& event);
  void mouseReleased();

 private:
  void setFlag(Qt::WindowType flag, bool isSet);
  bool hasShadow() const;
  QRectF cardRect() const;
  /// The side of the window under the point that resizes it; empty elsewhere.
  Qt::Edges sideAt(const QPointF& point) const;

  QWidget& window_;
  bool isComposited_;
  /// From the window's corner to the mouse, while the program moves the window itself.
  std::optional<QPoint> grip_;
};

}  // namespace linewatch::desktop
