#include "desktop/window/column_accessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <algorithm>
#include <vector>

#include "desktop/window/details_column.h"

namespace linewatch::desktop {

namespace {

/// The visible range of a column.
class AccessibleParts final : public QAccessibleWidget {
 public:
  explicit AccessibleParts(DetailsColumn& column)
      : QAccessibleWidget(column.viewport(), QAccessible::Grouping), column_(column) {}

  /// The column itself has the focus.
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.focused = false;
    return state;
  }
  int childCount() const override { return static_cast<int>(column_.shownWidgets().size()); }
  QAccessibleInterface* child(int index) const override {
    const std::vector<QWidget*> widgets = column_.shownWidgets();
    const bool exists = index >= 0 && static_cast<std::size_t>(index) < widgets.size();
    return exists ? QAccessible::queryAccessibleInterface(widgets[static_cast<std::size_t>(index)]) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    const std::vector<QWidget*> widgets = column_.shownWidgets();
    const auto place = child != nullptr ? std::ranges::find(widgets, child->object()) : widgets.end();
    return place == widgets.end() ? -1 : static_cast<int>(place - widgets.begin());
  }

 private:
  DetailsColumn& column_;
};

QAccessibleInterface* makeAccessibleParts(const QString&, QObject* object) {
  auto* const column = dynamic_cast<DetailsColumn*>(object->parent());
  return column != nullptr && column->viewport() == object ? new AccessibleParts(*column) : nullptr;
}

}  // namespace

void installColumnAccessibility() { QAccessible::installFactory(makeAccessibleParts); }

void announceParts(DetailsColumn& column) {
  if (!QAccessible::isActive()) return;
  QAccessibleEvent event(column.viewport(), QAccessible::ObjectReorder);
  QAccessible::updateAccessibility(&event);
}

}  // namespace linewatch::desktop
