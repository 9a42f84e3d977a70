#pragma once

#include <QStyledItemDelegate>
#include <memory>

#include "ui/artwork_cache.h"

namespace linewatch::desktop {

/// Draws one transit line of a list: its shield, its name, a text below the name, and a mark that shows
/// whether the item is checked. A click anywhere on the row, or Space, toggles the mark.
class LineDelegate final : public QStyledItemDelegate {
 public:
  /// The text below the name. The name is the item's own text. The item may be checkable.
  static constexpr int kDetailsRole = Qt::UserRole;
  /// The line's shield, as a SharedArtwork.
  static constexpr int kArtworkRole = Qt::UserRole + 1;

  LineDelegate(std::shared_ptr<ArtworkDataSourceCache> cache, std::int64_t step, const QFont& nameFont,
               const QFont& detailsFont, QObject* parent);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

 private:
  void paintShield(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                   const QRectF& place) const;
  void paintNames(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                  const QRectF& place) const;

  std::shared_ptr<ArtworkDataSourceCache> cache_;
  std::int64_t step_;
  QFont nameFont_;
  QFont detailsFont_;
};

}  // namespace linewatch::desktop

Q_DECLARE_METATYPE(linewatch::SharedArtwork)
