#include "desktop/window/enter_key.h"

#include <QAbstractButton>
#include <QKeyEvent>

namespace linewatch::desktop {

namespace {

/// Clicks the button on Enter. The button owns it.
class EnterFilter final : public QObject {
 public:
  explicit EnterFilter(QAbstractButton& button) : QObject(&button), button_(button) {}

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
    const auto& pressed = *static_cast<const QKeyEvent*>(event);
    if (pressed.key() != Qt::Key_Return && pressed.key() != Qt::Key_Enter) return false;
    if (!pressed.isAutoRepeat()) button_.click();
    return true;
  }

 private:
  QAbstractButton& button_;
};

}  // namespace

void clickOnEnter(QAbstractButton& button) { button.installEventFilter(new EnterFilter(button)); }

}  // namespace linewatch::desktop
