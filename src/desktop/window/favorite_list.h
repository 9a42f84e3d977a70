#pragma once

#include <QListView>
#include <QPoint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/window/action_list.h"
#include "desktop/window/favorite_model.h"
#include "storage/stored_favorites.h"
#include "ui/artwork_cache.h"

class QFont;

namespace linewatch::desktop {

class LineDelegate;
class RowMenuButton;

/// A list of lines under headings, each with a star that shows whether it is a favourite. A click, Space or
/// Enter toggles the star. The favourites of an ordered section are moved by dragging, or with Alt and the
/// arrow keys. Main thread.
class FavoriteList final : public ActionList<QListView> {
 public:
  struct Handlers {
    /// Saves the order of the ordered rows; false on failure. Without it the rows cannot be moved.
    std::function<bool(const std::vector<StoredFavorite>& order)> reorder = {};
    /// Shows the choices of a favourite.
    std::function<void(const StoredFavorite& favorite)> showMenu = {};
  };
  struct Fonts {
    const QFont& name;
    const QFont& details;
    const QFont& heading;
  };

  /// `step`: the size step of shields. `textScale`: how much larger the fonts are than at the default text
  /// size.
  FavoriteList(FavoriteModel::Source source, std::shared_ptr<ArtworkDataSourceCache> cache, std::int64_t step,
               double textScale, const Fonts& fonts, Handlers handlers);

  /// Keeps the button at the current row if that is a favourite, else hides it. `name`: what the button does.
  void setMenuButton(RowMenuButton* button, const QString& name);

  FavoriteModel& rows() { return *model_; }
  /// Replaces the rows. The current line stays current, and stays at its place in the window.
  void replaceRows(std::vector<FavoriteModel::Row> rows);
  /// Tells assistive technology that the star of this line has changed.
  void announceStar(const StoredFavorite& line);
  /// Makes the first line current if there is no current one.
  void ensureCurrent();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                   const QList<int>& roles) override;
  void scrollContentsBy(int dx, int dy) override;
  void updateGeometries() override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void showMenu(const QModelIndex& index);
  void placeMenuButton();
  void toggle(const QModelIndex& index);
  bool moveCurrent(int step);
  void saveOrder();
  void dragTo(const QPoint& place);

  FavoriteModel* model_;
  LineDelegate* delegate_;
  /// Null without `setMenuButton`.
  RowMenuButton* menuButton_ = nullptr;
  QString menuName_;
  Handlers handlers_;
  /// Where the mouse was pressed on an ordered row.
  std::optional<QPoint> pressed_;
  bool isDragging_ = false;
};

}  // namespace linewatch::desktop
