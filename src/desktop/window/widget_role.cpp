#include "desktop/window/widget_role.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QLabel>
#include <QToolButton>
#include <QVariant>

namespace linewatch::desktop {

namespace {

constexpr char kRole[] = "accessibleRole";
constexpr char kExpanded[] = "accessibleExpanded";

class AccessibleWidget final : public QAccessibleWidget {
 public:
  AccessibleWidget(QWidget& widget, QAccessible::Role role) : QAccessibleWidget(&widget, role) {}

  QString text(QAccessible::Text text) const override {
    if (text == QAccessible::Name && widget()->accessibleName().isEmpty()) {
      if (const auto* const label = qobject_cast<QLabel*>(widget())) return label->text();
      if (button() != nullptr) return button()->text();
    }
    // Qt would describe the widget with the HTML of its tooltip.
    return text == QAccessible::Description ? widget()->accessibleDescription()
                                            : QAccessibleWidget::text(text);
  }
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    if (button() != nullptr) {
      state.checkable = button()->isCheckable();
      state.checked = button()->isChecked();
      state.pressed = button()->isDown();
    }
    if (const auto* const label = qobject_cast<QLabel*>(widget()); label && label->text().isEmpty())
      state.invisible = true;
    const auto* const menuButton = qobject_cast<QToolButton*>(widget());
    state.hasPopup = menuButton != nullptr && menuButton->menu() != nullptr;
    const QVariant expanded = widget()->property(kExpanded);
    state.expandable = expanded.isValid();
    state.expanded = expanded.toBool();
    state.collapsed = expanded.isValid() && !expanded.toBool();
    return state;
  }
  QStringList actionNames() const override {
    QStringList names = QAccessibleWidget::actionNames();
    if (button() != nullptr && button()->isEnabled()) names.prepend(pressAction());
    return names;
  }
  void doAction(const QString& name) override {
    if (name != pressAction()) return QAccessibleWidget::doAction(name);
    if (button() != nullptr) button()->click();
  }
  QStringList keyBindingsForAction(const QString& name) const override {
    return name == pressAction() ? QStringList{QStringLiteral("Space")} : QStringList{};
  }

 private:
  QAbstractButton* button() const { return qobject_cast<QAbstractButton*>(widget()); }
};

QAccessibleInterface* makeAccessibleWidget(const QString&, QObject* object) {
  auto* const widget = qobject_cast<QWidget*>(object);
  const QVariant role = widget != nullptr ? widget->property(kRole) : QVariant();
  return role.isValid() ? new AccessibleWidget(*widget, static_cast<QAccessible::Role>(role.toInt()))
                        : nullptr;
}

/// Qt 6.4 does not send this change to the bus of assistive technology, so it is sent on Qt's connection.
void sendExpanded(QAbstractButton& button, bool isExpanded) {
  const QDBusConnection bus(QStringLiteral("a11y"));
  if (!QAccessible::isActive() || !bus.isConnected()) return;
  const QAccessible::Id id = QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&button));
  QDBusMessage change = QDBusMessage::createSignal(
      QStringLiteral("/org/a11y/atspi/accessible/") + QString::number(id),
      QStringLiteral("org.a11y.atspi.Event.Object"), QStringLiteral("StateChanged"));
  change << QStringLiteral("expanded") << (isExpanded ? 1 : 0) << 0 << QVariant::fromValue(QDBusVariant(0))
         << QVariantMap();
  bus.send(change);
}

}  // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
  QAccessible::installFactory(makeAccessibleWidget);
  widget.setProperty(kRole, static_cast<int>(role));
  // A widget that has announced a change already is known by Qt's role.
  QAccessible::deleteAccessibleInterface(
      QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&widget)));
}

void setAccessibleExpanded(QAbstractButton& button, bool isExpanded) {
  const QVariant before = button.property(kExpanded);
  if (before.isValid() && before.toBool() == isExpanded) return;
  button.setProperty(kExpanded, isExpanded);
  QAccessible::State changed;
  changed.expanded = true;
  QAccessibleStateChangeEvent event(&button, changed);
  QAccessible::updateAccessibility(&event);
  sendExpanded(button, isExpanded);
}

// A hidden widget would be invisible to assistive technology too, so it has the size of a pixel.
QWidget* makeAnnouncer(QWidget& window) {
  auto* const announcer = new QWidget(&window);
  announcer->setFixedSize(1, 1);
  announcer->setAttribute(Qt::WA_TransparentForMouseEvents);
  setAccessibleRole(*announcer, QAccessible::StatusBar);
  return announcer;
}

void announce(QWidget& announcer, const QString& text) {
  if (announcer.accessibleName() != text) announcer.setAccessibleName(text);
}

}  // namespace linewatch::desktop
