#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QProxyStyle>
#include <QWidget>

namespace linewatch::desktop {

/// A style without animations.
class StillStyle final : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    return hint == SH_Widget_Animation_Duration ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
  }
};

/// Makes the process's application, without a display, on the first call.
inline void needApplication() {
  static char name[] = "test", option[] = "-platform", value[] = "offscreen";
  static char* arguments[] = {name, option, value, nullptr};
  static int count = 3;
  static QApplication* const application = [] {
    auto* const made = new QApplication(count, arguments);
    QApplication::setStyle(new StillStyle);
    QApplication::setQuitOnLastWindowClosed(false);
    return made;
  }();
  (void)application;
}

/// Processes all pending events.
inline void settle() {
  for (int i = 0; i < 3; ++i) {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
  }
}

/// Runs the event loop until the condition holds. The test's time limit ends it otherwise.
template <class Condition>
void waitUntil(Condition condition) {
  while (!condition()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  settle();
}

/// The visible window of this class; null when there is none.
template <class Window>
Window* window() {
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    if (auto* const found = dynamic_cast<Window*>(widget); found && found->isVisible()) return found;
  }
  return nullptr;
}

inline void press(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QKeyEvent down(QEvent::KeyPress, key, modifiers);
  QApplication::sendEvent(&widget, &down);
  QKeyEvent up(QEvent::KeyRelease, key, modifiers);
  QApplication::sendEvent(&widget, &up);
  settle();
}

inline void mouse(QWidget& widget, QEvent::Type type, const QPointF& point) {
  const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
  const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
  QMouseEvent event(type, point, widget.mapToGlobal(point), button, held, Qt::NoModifier);
  QApplication::sendEvent(&widget, &event);
}

inline void click(QWidget& widget, const QPointF& point) {
  mouse(widget, QEvent::MouseButtonPress, point);
  mouse(widget, QEvent::MouseButtonRelease, point);
  settle();
}

/// Moves the mouse from one point to another with the left button down.
inline void drag(QWidget& widget, const QPointF& from, const QPointF& to) {
  mouse(widget, QEvent::MouseButtonPress, from);
  for (int step = 1; step <= 4; ++step) mouse(widget, QEvent::MouseMove, from + (to - from) * step / 4);
  mouse(widget, QEvent::MouseButtonRelease, to);
  settle();
}

}  // namespace linewatch::desktop
