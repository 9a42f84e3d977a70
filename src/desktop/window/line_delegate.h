#pragma once

#include <QStyledItemDelegate>
#include <memory>

#include "ui/artwork_cache.h"

namespace linewatch::desktop {

/// Draws a line of a list: its shield, its name over its agency, and a mark that says whether it is chosen. A
/// click anywhere on the row, or Space, changes the mark.
class LineDelegate final : public QStyledItemDelegate {
 public:
  /// Beside the name as text, of an item that may be checked.
  static constexpr int kAgencyRole = Qt::UserRole;
  /// A SharedArtwork.
  static constexpr int kArtworkRole = Qt::UserRole + 1;

  LineDelegate(std::shared_ptr<ArtworkDataSourceCache> cache, std::int64_t step, const QFont& nameFont,
               const QFont& agencyFont, QObject* parent);

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
  QFont agencyFont_;
};

}  // namespace linewatch::desktop

Q_DECLARE_METATYPE(linewatch::SharedArtwork)
