#pragma once

#include <QFont>
#include <QRect>
#include <QStyledItemDelegate>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "ui/artwork_cache.h"

namespace linewatch::desktop {

/// Draws the rows of a list of lines. A line has its shield, its name, a text below the name, and a star that
/// shows whether the item is checked. A click anywhere on the row, or Space, toggles the star. A favourite
/// also has a button for its choices, and a row that can be moved has a grip.
class LineDelegate final : public QStyledItemDelegate {
 public:
  /// The text below the name. The name is the item's own text. The item may be checkable.
  static constexpr int kDetailsRole = Qt::UserRole;
  /// The line's shield, as a SharedArtwork.
  static constexpr int kArtworkRole = Qt::UserRole + 1;

  struct Fonts {
    QFont name;
    QFont details;
    QFont heading;
  };
  /// Called with the row whose button was clicked.
  using MenuHandler = std::function<void(const QModelIndex& index)>;

  /// `step`: the size step of shields. `textScale`: how much larger the fonts are than at the default text
  /// size.
  LineDelegate(std::shared_ptr<ArtworkDataSourceCache> cache, std::int64_t step, double textScale,
               Fonts fonts, QObject* parent);

  void setMenuHandler(MenuHandler handler) { showMenu_ = std::move(handler); }
  /// Where a favourite's row has its button.
  QRect menuRect(const QRect& row, Qt::LayoutDirection direction) const;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

 private:
  struct Places {
    QRectF grip, shield, names, menu, star;
  };

  Places placesIn(const QStyleOptionViewItem& option, bool hasMenu) const;
  void paintShield(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                   const QRectF& place) const;
  void paintHeading(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
  void paintNames(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                  const QRectF& place) const;

  std::shared_ptr<ArtworkDataSourceCache> cache_;
  std::int64_t step_;
  Fonts fonts_;
  double textGrowth_;
  double signGrowth_;
  /// Points.
  int lineHeight_;
  int headingHeight_;
  MenuHandler showMenu_;
};

}  // namespace linewatch::desktop

Q_DECLARE_METATYPE(linewatch::SharedArtwork)
