#pragma once

#include <QListWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "storage/stored_favorites.h"
#include "ui/artwork_cache.h"

class QFont;

namespace linewatch::desktop {

/// A list of lines, each with a mark that shows whether it is a favourite. A click, Space or Enter toggles
/// the mark.
class FavoriteList final : public QListWidget {
 public:
  struct Entry {
    StoredFavorite favorite;
    QString name;
    QString agency;
    SharedArtwork artwork;
  };

  struct Mark {
    bool isFavorite = false;
    /// The incidents that the user has chosen, in words; empty for all.
    QString choice = {};
  };
  using MarkOf = std::function<Mark(const StoredFavorite&)>;

  struct Handlers {
    /// Adds or removes a favourite. If it fails it returns false, and the mark goes back. Without this
    /// handler the marks cannot be changed.
    std::function<bool(const StoredFavorite& favorite, bool isAdded)> change = {};
    /// Shows the menu of a line at a place on the screen.
    std::function<void(const StoredFavorite& favorite, const QPoint& place)> showMenu = {};
  };

  /// `step`: the size step of shields.
  FavoriteList(std::shared_ptr<ArtworkDataSourceCache> cache, std::int64_t step, const QFont& nameFont,
               const QFont& agencyFont, Handlers handlers);

  void clearEntries();
  void add(const Entry& entry, const Mark& mark);
  bool contains(const StoredFavorite& favorite) const;
  /// Sets the mark of every line.
  void setMarks(const MarkOf& markOf);

  /// The current line and the scroll position. They are restored after the list has been filled again.
  struct Place {
    std::optional<StoredFavorite> current;
    int scrolledTo = 0;
  };
  Place place() const;
  void restore(const Place& place);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  const Entry& entryOf(const QListWidgetItem& item) const;
  void show(const Mark& mark, std::size_t row);
  void itemDidChange(QListWidgetItem& item);
  void toggleCurrent();

  Handlers handlers_;
  /// By row.
  std::vector<Entry> entries_;
};

}  // namespace linewatch::desktop
