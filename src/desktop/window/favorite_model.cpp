#include "desktop/window/favorite_model.h"

#include <QStringList>
#include <algorithm>
#include <utility>

#include "desktop/window/line_delegate.h"

namespace linewatch::desktop {

namespace {

/// The second line of a row.
QString detailsOf(const FavoriteModel::Description& line, const FavoriteModel::Mark& mark) {
  QStringList words{line.agency, mark.choice};
  words.removeAll(QString());
  return words.join(QStringLiteral(" · "));
}

/// The text for a screen reader: the shield, the name, the agency and the choice.
QString accessibleText(const FavoriteModel::Description& line, const FavoriteModel::Mark& mark) {
  const auto& shield = line.artwork ? line.artwork->shieldDataSource : std::nullopt;
  const QString shieldText = shield ? QString::fromStdString(shield->shieldText.value_or("")) : QString();
  QStringList words{shieldText, line.name, line.agency, mark.choice};
  words.removeAll(QString());
  return words.join(QStringLiteral(", "));
}

}  // namespace

FavoriteModel::FavoriteModel(Source source, QObject* parent)
    : QAbstractListModel(parent), source_(std::move(source)) {}

void FavoriteModel::setRows(std::vector<Row> rows) {
  beginResetModel();
  rows_ = std::move(rows);
  endResetModel();
}

std::optional<int> FavoriteModel::find(const StoredFavorite& favorite, bool isOrdered) const {
  std::optional<int> found;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (rows_[i].isHeading() || !rows_[i].favorite.isSameAs(favorite)) continue;
    if (rows_[i].isOrdered == isOrdered) return static_cast<int>(i);
    if (!found) found = static_cast<int>(i);
  }
  return found;
}

void FavoriteModel::marksDidChange() {
  if (!rows_.empty()) emit dataChanged(index(0), index(rowCount() - 1));
}

bool FavoriteModel::moveRow(int from, int to) {
  if (from == to || to < 0 || to >= rowCount() || !row(from).isOrdered || !row(to).isOrdered) return false;
  beginMoveRows({}, from, from, {}, to > from ? to + 1 : to);
  const auto first = rows_.begin() + std::min(from, to);
  const auto last = rows_.begin() + std::max(from, to) + 1;
  std::rotate(first, from < to ? first + 1 : last - 1, last);
  endMoveRows();
  return true;
}

std::vector<StoredFavorite> FavoriteModel::order() const {
  std::vector<StoredFavorite> favorites;
  for (const Row& row : rows_) {
    if (row.isOrdered) favorites.push_back(row.favorite);
  }
  return favorites;
}

int FavoriteModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant FavoriteModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Row& row = this->row(index.row());
  if (role == kHeadingRole) return row.isHeading();
  if (row.isHeading()) return role == Qt::DisplayRole ? QVariant(row.heading) : QVariant();
  switch (role) {
    case Qt::DisplayRole:
      return source_.describe(row).name;
    case LineDelegate::kDetailsRole:
      return detailsOf(row.isInGroup ? Description() : source_.describe(row), source_.mark(row.favorite));
    case LineDelegate::kArtworkRole:
      return QVariant::fromValue(source_.describe(row).artwork);
    case Qt::AccessibleTextRole:
      return accessibleText(source_.describe(row), source_.mark(row.favorite));
    case Qt::CheckStateRole:
      return static_cast<int>(source_.mark(row.favorite).isFavorite ? Qt::Checked : Qt::Unchecked);
    case kOrderedRole:
      return row.isOrdered;
    case kFavoriteRole:
      return source_.change && source_.mark(row.favorite).isFavorite;
    default:
      return {};
  }
}

bool FavoriteModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::CheckStateRole || !source_.change || row(index.row()).isHeading())
    return false;
  // A copy, because the change may replace the rows.
  const StoredFavorite favorite = row(index.row()).favorite;
  return source_.change(favorite, value.toInt() == Qt::Checked);
}

Qt::ItemFlags FavoriteModel::flags(const QModelIndex& index) const {
  if (!index.isValid() || row(index.row()).isHeading()) return Qt::NoItemFlags;
  const Qt::ItemFlags usual = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  return source_.change ? usual | Qt::ItemIsUserCheckable : usual;
}

}  // namespace linewatch::desktop
