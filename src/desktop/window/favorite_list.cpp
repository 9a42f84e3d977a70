#include "desktop/window/favorite_list.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QFont>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <utility>

#include "desktop/window/line_delegate.h"
#include "desktop/window/row_menu_button.h"

namespace linewatch::desktop {

FavoriteList::FavoriteList(FavoriteModel::Source source, std::shared_ptr<ArtworkDataSourceCache> cache,
                           std::int64_t step, double textScale, const Fonts& fonts, Handlers handlers)
    : model_(new FavoriteModel(std::move(source), this)),
      delegate_(new LineDelegate(std::move(cache), step, textScale,
                                 {fonts.name, fonts.details, fonts.heading}, this)),
      handlers_(std::move(handlers)) {
  setFrameShape(QFrame::NoFrame);
  setMouseTracking(true);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  delegate_->setMenuHandler([this](const QModelIndex& index) { showMenu(index); });
  setItemDelegate(delegate_);
  setModel(model_);
  setRowAction([this](const QModelIndex& index) { toggle(index); });
}

void FavoriteList::replaceRows(std::vector<FavoriteModel::Row> rows) {
  if (rows == model_->rows()) return model_->marksDidChange();
  const QModelIndex current = currentIndex();
  const int scrolledTo = verticalScrollBar()->value();
  if (!current.isValid() || model_->row(current.row()).isHeading()) {
    model_->setRows(std::move(rows));
    return verticalScrollBar()->setValue(scrolledTo);
  }
  const int offset = visualRect(current).top();
  const StoredFavorite favorite = model_->row(current.row()).favorite;
  const bool isOrdered = model_->row(current.row()).isOrdered;
  model_->setRows(std::move(rows));
  const auto row = model_->find(favorite, isOrdered);
  if (!row) return verticalScrollBar()->setValue(scrolledTo);
  selectionModel()->setCurrentIndex(model_->index(*row), QItemSelectionModel::NoUpdate);
  doItemsLayout();
  const int now = visualRect(model_->index(*row)).top();
  verticalScrollBar()->setValue(verticalScrollBar()->value() + now - offset);
}

void FavoriteList::announceStar(const StoredFavorite& line) {
  for (int row = 0; row < model_->rowCount(); ++row) {
    if (model_->row(row).isHeading() || !model_->row(row).favorite.isSameAs(line)) continue;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(this, changed);
    event.setChild(row);
    QAccessible::updateAccessibility(&event);
  }
}

void FavoriteList::ensureCurrent() {
  if (currentIndex().isValid()) return;
  for (int row = 0; row < model_->rowCount(); ++row) {
    if (!model_->row(row).isHeading()) return setCurrentIndex(model_->index(row));
  }
}

void FavoriteList::toggle(const QModelIndex& index) {
  if (!(index.flags() & Qt::ItemIsUserCheckable)) return;
  const bool isChecked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
  model_->setData(index, static_cast<int>(isChecked ? Qt::Unchecked : Qt::Checked), Qt::CheckStateRole);
}

bool FavoriteList::moveCurrent(int step) {
  const int row = currentIndex().row();
  if (!handlers_.reorder || row < 0 || !model_->moveRow(row, row + step)) return false;
  scrollTo(currentIndex());
  saveOrder();
  return true;
}

void FavoriteList::saveOrder() { static_cast<void>(handlers_.reorder(model_->order())); }

void FavoriteList::keyPressEvent(QKeyEvent* event) {
  const int key = event->key();
  const bool isUpOrDown = key == Qt::Key_Up || key == Qt::Key_Down;
  if (isUpOrDown && event->modifiers() & Qt::AltModifier) {
    moveCurrent(key == Qt::Key_Up ? -1 : 1);
    return event->accept();
  }
  if (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter) {
    if (!event->isAutoRepeat()) toggle(currentIndex());
    return event->accept();
  }
  // Some platforms send only a key event for the keys that open a menu.
  if (key == Qt::Key_Menu || (key == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier)) {
    showMenu(currentIndex());
    return event->accept();
  }
  QListView::keyPressEvent(event);
}

// ---- The button of the current row ----

void FavoriteList::setMenuButton(RowMenuButton* button, const QString& name) {
  menuButton_ = button;
  menuName_ = name;
  connect(button, &QAbstractButton::clicked, this, [this] { showMenu(currentIndex()); });
  placeMenuButton();
}

void FavoriteList::placeMenuButton() {
  if (menuButton_ == nullptr) return;
  const QModelIndex index = currentIndex();
  const QRect place = delegate_->menuRect(visualRect(index), layoutDirection());
  const bool isShown =
      index.data(FavoriteModel::kFavoriteRole).toBool() && viewport()->rect().contains(place);
  menuButton_->setVisible(isShown);
  if (!isShown) return;
  menuButton_->setGeometry({viewport()->mapTo(parentWidget(), place.topLeft()), place.size()});
  menuButton_->raise();
  menuButton_->setAccessibleName(menuName_ + QStringLiteral(" – ") + index.data().toString());
}

void FavoriteList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QListView::currentChanged(current, previous);
  // Above the first line there is its heading.
  if (current.row() == 1 && model_->row(0).isHeading()) scrollToTop();
  placeMenuButton();
}

void FavoriteList::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                               const QList<int>& roles) {
  QListView::dataChanged(topLeft, bottomRight, roles);
  placeMenuButton();
}

void FavoriteList::scrollContentsBy(int dx, int dy) {
  QListView::scrollContentsBy(dx, dy);
  placeMenuButton();
}

void FavoriteList::updateGeometries() {
  QListView::updateGeometries();
  placeMenuButton();
}

// ---- Menu ----

void FavoriteList::showMenu(const QModelIndex& index) {
  if (!handlers_.showMenu || !index.isValid() || model_->row(index.row()).isHeading()) return;
  // A copy, because the rows may be replaced.
  const StoredFavorite favorite = model_->row(index.row()).favorite;
  handlers_.showMenu(favorite);
}

void FavoriteList::contextMenuEvent(QContextMenuEvent* event) {
  const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
  showMenu(isByKey ? currentIndex() : indexAt(event->pos()));
}

// ---- Dragging ----

void FavoriteList::mousePressEvent(QMouseEvent* event) {
  const QModelIndex index = indexAt(event->pos());
  isDragging_ = false;
  pressed_.reset();
  const bool isOrdered = index.isValid() && model_->row(index.row()).isOrdered;
  if (event->button() == Qt::LeftButton && handlers_.reorder && isOrdered) pressed_ = event->pos();
  QListView::mousePressEvent(event);
}

void FavoriteList::mouseMoveEvent(QMouseEvent* event) {
  if (!pressed_ || !(event->buttons() & Qt::LeftButton)) return QListView::mouseMoveEvent(event);
  if ((event->pos() - *pressed_).manhattanLength() >= QApplication::startDragDistance() && !isDragging_) {
    isDragging_ = true;
    viewport()->setCursor(Qt::ClosedHandCursor);
  }
  if (isDragging_) dragTo(event->pos());
}

/// The row follows the mouse, and the others make room.
void FavoriteList::dragTo(const QPoint& place) {
  const QModelIndex target = indexAt({viewport()->width() / 2, place.y()});
  if (!target.isValid() || !currentIndex().isValid()) return;
  model_->moveRow(currentIndex().row(), target.row());
  scrollTo(currentIndex());
}

void FavoriteList::mouseReleaseEvent(QMouseEvent* event) {
  pressed_.reset();
  if (!std::exchange(isDragging_, false)) return QListView::mouseReleaseEvent(event);
  viewport()->unsetCursor();
  saveOrder();
}

}  // namespace linewatch::desktop
