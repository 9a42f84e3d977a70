#include "desktop/window/touch_gesture.h"

#include <QGuiApplication>
#include <QStyleHints>
#include <QTouchEvent>
#include <QWidget>
#include <cmath>
#include <utility>

namespace linewatch::desktop {

TouchGesture::TouchGesture(Handlers handlers) : handlers_(std::move(handlers)) {}

void TouchGesture::handle(const QTouchEvent& event, const QWidget& widget) {
  if (event.type() == QEvent::TouchCancel) {
    touch_.reset();
    return handlers_.cancelled();
  }
  for (const QEventPoint& point : event.points()) {
    const QPointF position = widget.mapFromGlobal(point.globalPosition());
    if (event.type() == QEvent::TouchBegin) return begin(point.id(), position);
    if (!touch_ || touch_->finger != point.id()) continue;
    return point.state() == QEventPoint::Released ? end(position) : move(position);
  }
}

void TouchGesture::begin(int finger, const QPointF& position) {
  touch_ = Touch{.finger = finger, .startY = position.y(), .lastY = position.y()};
  handlers_.began(position);
}

void TouchGesture::move(const QPointF& position) {
  const int threshold = QGuiApplication::styleHints()->startDragDistance();
  if (!touch_->scrolls && std::abs(position.y() - touch_->startY) < threshold) return;
  if (!std::exchange(touch_->scrolls, true)) handlers_.cancelled();
  handlers_.scrolled(std::exchange(touch_->lastY, position.y()) - position.y());
}

void TouchGesture::end(const QPointF& position) {
  const bool isTap = !touch_->scrolls;
  touch_.reset();
  if (isTap) handlers_.tapped(position);
}

}  // namespace linewatch::desktop
