#include "desktop/window/favorite_list.h"

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

/// What assistive technology reads: the shield, the name and the agency.
QString accessibleText(const FavoriteList::Entry& entry) {
  const auto& shield = entry.artwork ? entry.artwork->shieldDataSource : std::nullopt;
  const QString shieldText = shield ? QString::fromStdString(shield->shieldText.value_or("")) : QString();
  QStringList words{shieldText, entry.name, entry.agency};
  words.removeAll(QString());
  return words.join(QStringLiteral(", "));
}

Qt::CheckState checkState(bool isFavorite) { return isFavorite ? Qt::Checked : Qt::Unchecked; }

}  // namespace

FavoriteList::FavoriteList(std::shared_ptr<ArtworkDataSourceCache> cache, std::int64_t step,
                           const QFont& nameFont, const QFont& agencyFont, Change change)
    : change_(std::move(change)) {
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
  favorites_.clear();
}

void FavoriteList::add(const Entry& entry, bool isFavorite) {
  const QSignalBlocker blocker(this);
  favorites_.push_back(entry.favorite);
  auto* const item = new QListWidgetItem(entry.name, this);
  item->setData(LineDelegate::kAgencyRole, entry.agency);
  item->setData(LineDelegate::kArtworkRole, QVariant::fromValue(entry.artwork));
  item->setData(Qt::AccessibleTextRole, accessibleText(entry));
  item->setCheckState(checkState(isFavorite));
  item->setFlags(change_ ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable
                         : Qt::ItemIsEnabled | Qt::ItemIsSelectable);
}

bool FavoriteList::contains(const StoredFavorite& favorite) const {
  return std::ranges::any_of(favorites_,
                             [&](const StoredFavorite& other) { return other.isSameAs(favorite); });
}

void FavoriteList::setMarks(const std::function<bool(const StoredFavorite&)>& isFavorite) {
  const QSignalBlocker blocker(this);
  for (std::size_t row = 0; row < favorites_.size(); ++row)
    item(static_cast<int>(row))->setCheckState(checkState(isFavorite(favorites_[row])));
}

FavoriteList::Place FavoriteList::place() const {
  const int row = currentRow();
  return {row < 0 ? std::nullopt : std::optional(favorites_[static_cast<std::size_t>(row)]),
          verticalScrollBar()->value()};
}

void FavoriteList::restore(const Place& place) {
  const auto found = place.current ? std::ranges::find(favorites_, *place.current) : favorites_.end();
  if (found != favorites_.end()) setCurrentRow(static_cast<int>(found - favorites_.begin()));
  verticalScrollBar()->setValue(place.scrolledTo);
}

void FavoriteList::itemDidChange(QListWidgetItem& item) {
  const bool isAdded = item.checkState() == Qt::Checked;
  if (change_(favorites_[static_cast<std::size_t>(row(&item))], isAdded)) return;
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

}  // namespace linewatch::desktop
