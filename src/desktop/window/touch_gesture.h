#pragma once

#include <QPointF>
#include <functional>
#include <optional>

class QTouchEvent;
class QWidget;

namespace linewatch::desktop {

/// Turns touch events into taps and scrolling. Only the first finger counts; other fingers are ignored until
/// all are lifted.
class TouchGesture {
 public:
  /// Positions are in the widget's coordinates.
  struct Handlers {
    /// A finger touches the widget, to tap or to scroll.
    std::function<void(const QPointF& position)> began;
    std::function<void(const QPointF& position)> tapped;
    /// The touch is no tap: it scrolls, or the system has cancelled it.
    std::function<void()> cancelled;
    /// `points` is positive when the finger moves up.
    std::function<void(double points)> scrolled;
  };

  explicit TouchGesture(Handlers handlers);

  void handle(const QTouchEvent& event, const QWidget& widget);

 private:
  struct Touch {
    /// The id of the first finger.
    int finger = 0;
    double startY = 0;
    double lastY = 0;
    bool scrolls = false;
  };

  void begin(int finger, const QPointF& position);
  void move(const QPointF& position);
  void end(const QPointF& position);

  Handlers handlers_;
  std::optional<Touch> touch_;
};

}  // namespace linewatch::desktop
