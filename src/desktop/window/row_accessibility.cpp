#include "desktop/window/row_accessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <cstddef>
#include <vector>

#include "desktop/window/row_surface.h"

namespace linewatch::desktop {

namespace {

/// One row. Valid while the surface has that many rows.
class AccessibleRow final : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  AccessibleRow(RowSurface& surface, std::size_t row) : surface_(&surface), row_(row) {}

  bool isValid() const override { return surface_ && row_ < surface_->rowCount(); }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return surface_ ? surface_->window()->windowHandle() : nullptr; }
  QAccessibleInterface* parent() const override {
    return surface_ ? QAccessible::queryAccessibleInterface(surface_) : nullptr;
  }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }

  QAccessible::Role role() const override { return QAccessible::ListItem; }
  QString text(QAccessible::Text text) const override {
    if (!isValid()) return {};
    const RowWords words = surface_->wordsOf(row_);
    if (text == QAccessible::Name) return words.name;
    return text == QAccessible::Description ? words.description : QString();
  }
  void setText(QAccessible::Text, const QString&) override {}
  QAccessible::State state() const override {
    QAccessible::State state;
    state.invalid = !isValid();
    if (state.invalid) return state;
    state.focusable = true;
    state.focused = surface_->hasFocus() && surface_->currentRow() == row_;
    state.readOnly = true;
    state.invisible = !surface_->isVisible();
    state.offscreen = !surface_->rect().intersects(surface_->rectOf(row_));
    return state;
  }
  QRect rect() const override {
    if (!isValid()) return {};
    const QRect inside = surface_->rectOf(row_);
    return {surface_->mapToGlobal(inside.topLeft()), inside.size()};
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }
  QStringList actionNames() const override {
    if (!isValid()) return {};
    return surface_->opens(row_) ? QStringList{pressAction(), setFocusAction()}
                                 : QStringList{setFocusAction()};
  }
  void doAction(const QString& name) override {
    if (!isValid()) return;
    if (name == setFocusAction()) {
      surface_->setFocus(Qt::OtherFocusReason);
      surface_->setCurrentRow(row_);
    } else if (name == pressAction()) {
      surface_->pressRow(row_);
    }
  }
  QStringList keyBindingsForAction(const QString& name) const override {
    return name == pressAction() ? QStringList{QStringLiteral("Space")} : QStringList{};
  }

 private:
  QPointer<RowSurface> surface_;
  std::size_t row_;
};

class AccessibleRows final : public QAccessibleWidget {
 public:
  explicit AccessibleRows(RowSurface& surface) : QAccessibleWidget(&surface, QAccessible::List) {}
  ~AccessibleRows() override {
    for (const QAccessible::Id id : rows_) QAccessible::deleteAccessibleInterface(id);
  }

  /// Without the tooltip, which has a text of the header.
  QString text(QAccessible::Text text) const override {
    return text == QAccessible::Description ? QString() : QAccessibleWidget::text(text);
  }
  int childCount() const override { return static_cast<int>(surface().rowCount()); }
  QAccessibleInterface* child(int index) const override {
    if (index < 0 || index >= childCount()) return nullptr;
    while (rows_.size() <= static_cast<std::size_t>(index))
      rows_.push_back(QAccessible::registerAccessibleInterface(new AccessibleRow(surface(), rows_.size())));
    return QAccessible::accessibleInterface(rows_[static_cast<std::size_t>(index)]);
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    const auto row = surface().rowAt(surface().mapFromGlobal(QPoint(x, y)));
    return row ? child(static_cast<int>(*row)) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      if (QAccessible::accessibleInterface(rows_[i]) == child) return static_cast<int>(i);
    }
    return -1;
  }
  QAccessibleInterface* focusChild() const override {
    const auto row = surface().currentRow();
    return surface().hasFocus() && row ? child(static_cast<int>(*row)) : nullptr;
  }

 private:
  RowSurface& surface() const { return *static_cast<RowSurface*>(widget()); }

  /// The interfaces of the rows. Each is made when it is first needed.
  mutable std::vector<QAccessible::Id> rows_;
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
  auto* const surface = dynamic_cast<RowSurface*>(object);
  return surface ? new AccessibleRows(*surface) : nullptr;
}

void announceFocusedRow(RowSurface& surface, QAccessible::Event what) {
  const auto row = surface.currentRow();
  if (!QAccessible::isActive() || !surface.hasFocus() || !row) return;
  QAccessibleEvent event(&surface, what);
  event.setChild(static_cast<int>(*row));
  QAccessible::updateAccessibility(&event);
}

}  // namespace

void installRowAccessibility() { QAccessible::installFactory(makeAccessible); }

void announceRows(RowSurface& surface) {
  if (!QAccessible::isActive()) return;
  QAccessibleEvent event(&surface, QAccessible::ObjectReorder);
  QAccessible::updateAccessibility(&event);
}

void announceWords(RowSurface& surface) {
  for (const auto change : {QAccessible::NameChanged, QAccessible::DescriptionChanged})
    announceFocusedRow(surface, change);
  announceFocus(surface);
}

void announceFocus(RowSurface& surface) { announceFocusedRow(surface, QAccessible::Focus); }

}  // namespace linewatch::desktop
