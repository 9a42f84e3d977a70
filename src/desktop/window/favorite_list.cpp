#include "desktop/window/favorite_list.h"

#include <QContextMenuEvent>
#include <QFont>
#include <QKeyEvent>
#include <QScrollBar>
#include <QSignalBlocker>
#include <algorithm>
#include <string>
#include <utility>

#include "desktop/window/line_delegate.h"

namespace linewatch::desktop {

namespace {

/// The second line of a row.
QString detailsOf(const FavoriteList::Entry& entry, const FavoriteList::Mark& mark) {
  QStringList words{entry.agency, mark.choice};
  words.removeAll(QString());
  return words.join(QStringLiteral(" · "));
}

/// The text for a screen reader: the shield, the name, the agency and the choice.
QString accessibleText(const FavoriteList::Entry& entry, const FavoriteList::Mark& mark) {
  const auto& shield = entry.artwork ? entry.artwork->shieldDataSource : std::nullopt;
  const QString shieldText = shield ? QString::fromStdString(shield->shieldText.value_or("")) : QString();
  QStringList words{shieldText, entry.name, entry.agency, mark.choice};
  words.removeAll(QString());
  return words.join(QStringLiteral(", "));
}

Qt::CheckState checkState(bool isFavorite) { return isFavorite ? Qt::Checked : Qt::Unchecked; }

}  // namespace

FavoriteList::FavoriteList(std::shared_ptr<ArtworkDataSourceCache> cache, std::int64_t step,
                           const QFont& nameFont, const QFont& agencyFont, Handlers handlers)
    : handlers_(std::move(handlers)) {
  setFrameShape(QFrame::NoFrame);
  setMouseTracking(true);
  setSelectionMode(QAbstractItemView::NoSelection);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setUniformItemSizes(true);
  setItemDelegate(new LineDelegate(std::move(cache), step, nameFont, agencyFont, this));
  connect(this, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) { itemDidChange(*item); });
}

void FavoriteList::clearEntries() {
  const QSignalBlocker blocker(this);
  clear();
  entries_.clear();
}

void FavoriteList::add(const Entry& entry, const Mark& mark) {
  const QSignalBlocker blocker(this);
  entries_.push_back(entry);
  auto* const item = new QListWidgetItem(entry.name, this);
  item->setData(LineDelegate::kArtworkRole, QVariant::fromValue(entry.artwork));
  item->setFlags(handlers_.change ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable
                                  : Qt::ItemIsEnabled | Qt::ItemIsSelectable);
  show(mark, entries_.size() - 1);
}

void FavoriteList::show(const Mark& mark, std::size_t row) {
  QListWidgetItem* const item = this->item(static_cast<int>(row));
  item->setData(LineDelegate::kDetailsRole, detailsOf(entries_[row], mark));
  item->setData(Qt::AccessibleTextRole, accessibleText(entries_[row], mark));
  item->setCheckState(checkState(mark.isFavorite));
}

bool FavoriteList::contains(const StoredFavorite& favorite) const {
  return std::ranges::any_of(entries_, [&](const Entry& entry) { return entry.favorite.isSameAs(favorite); });
}

void FavoriteList::setMarks(const MarkOf& markOf) {
  const QSignalBlocker blocker(this);
  for (std::size_t row = 0; row < entries_.size(); ++row) show(markOf(entries_[row].favorite), row);
  viewport()->update();
}

FavoriteList::Place FavoriteList::place() const {
  const QListWidgetItem* const current = currentItem();
  return {current ? std::optional(entryOf(*current).favorite) : std::nullopt, verticalScrollBar()->value()};
}

void FavoriteList::restore(const Place& place) {
  const auto isCurrent = [&](const Entry& entry) { return entry.favorite.isSameAs(*place.current); };
  const auto found = place.current ? std::ranges::find_if(entries_, isCurrent) : entries_.end();
  if (found != entries_.end()) setCurrentRow(static_cast<int>(found - entries_.begin()));
  verticalScrollBar()->setValue(place.scrolledTo);
}

const FavoriteList::Entry& FavoriteList::entryOf(const QListWidgetItem& item) const {
  return entries_[static_cast<std::size_t>(row(&item))];
}

void FavoriteList::itemDidChange(QListWidgetItem& item) {
  const bool isAdded = item.checkState() == Qt::Checked;
  if (handlers_.change(entryOf(item).favorite, isAdded)) return;
  const QSignalBlocker blocker(this);
  item.setCheckState(checkState(!isAdded));
}

void FavoriteList::toggleCurrent() {
  QListWidgetItem* const item = currentItem();
  if (!item || !(item->flags() & Qt::ItemIsUserCheckable)) return;
  item->setCheckState(checkState(item->checkState() != Qt::Checked));
}

/// A list view itself toggles the mark on Space only.
void FavoriteList::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
    return QListWidget::keyPressEvent(event);
  toggleCurrent();
}

void FavoriteList::contextMenuEvent(QContextMenuEvent* event) {
  const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
  const QListWidgetItem* const item = isByKey ? currentItem() : itemAt(event->pos());
  if (!item || !handlers_.showMenu) return event->ignore();
  const QPoint place = isByKey ? visualItemRect(item).center() : event->pos();
  handlers_.showMenu(entryOf(*item).favorite, viewport()->mapToGlobal(place));
}

}  // namespace linewatch::desktop
