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

/// A list of lines, each with a mark that says whether it is a favourite. A click, Space or Enter toggles the
/// mark.
class FavoriteList final : public QListWidget {
 public:
  struct Entry {
    StoredFavorite favorite;
    QString name;
    QString agency;
    SharedArtwork artwork;
  };

  /// Stores that a line is a favourite or no longer one; false when that failed, and the mark goes back.
  using Change = std::function<bool(const StoredFavorite& favorite, bool isAdded)>;

  /// `step`: the size step of shields. Without `change` the marks cannot be changed.
  FavoriteList(std::shared_ptr<ArtworkDataSourceCache> cache, std::int64_t step, const QFont& nameFont,
               const QFont& agencyFont, Change change);

  void clearEntries();
  void add(const Entry& entry, bool isFavorite);
  bool contains(const StoredFavorite& favorite) const;
  /// Sets the mark of every line.
  void setMarks(const std::function<bool(const StoredFavorite&)>& isFavorite);

  /// The current line and the scroll position, to be restored after the list was filled again.
  struct Place {
    std::optional<StoredFavorite> current;
    int scrolledTo = 0;
  };
  Place place() const;
  void restore(const Place& place);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void itemDidChange(QListWidgetItem& item);
  void toggleCurrent();

  Change change_;
  /// The favourite of each row.
  std::vector<StoredFavorite> favorites_;
};

}  // namespace linewatch::desktop
