#include "desktop/presence/first_draw.h"

#include <QEvent>
#include <QTimer>
#include <utility>

namespace linewatch::desktop {

namespace {

/// Ends itself with the first draw.
class FirstDraw final : public QObject {
 public:
  FirstDraw(QWidget& window, std::function<void()> action) : QObject(&window), action_(std::move(action)) {
    window.installEventFilter(this);
  }

  bool eventFilter(QObject* window, QEvent* event) override {
    if (event->type() != QEvent::Paint) return false;
    window->removeEventFilter(this);
    // The window draws itself after this filter.
    QTimer::singleShot(0, this, [this] {
      deleteLater();
      action_();
    });
    return false;
  }

 private:
  std::function<void()> action_;
};

}  // namespace

void afterFirstDraw(QWidget& window, std::function<void()> action) {
  if (window.isVisible())
    new FirstDraw(window, std::move(action));
  else
    QTimer::singleShot(0, &window, std::move(action));
}

}  // namespace linewatch::desktop
