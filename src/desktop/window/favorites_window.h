#pragma once

#include <QPointer>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "desktop/window/companion_window.h"
#include "desktop/window/favorite_list.h"
#include "feeds/gtfs/line_records.h"
#include "feeds/gtfs/line_search.h"
#include "feeds/transit_feeds.h"
#include "shared/outcome.h"
#include "storage/stored_favorites.h"

class QLabel;
class QLineEdit;
class QTimer;

namespace linewatch::desktop {

/// Functions of the program that the favourites window calls.
struct FavoritesServices {
  std::function<Outcome<std::vector<StoredFavorite>>()> favorites;
  /// Adds or removes a favourite; false when that changes nothing. An empty function when the favourites
  /// cannot be changed.
  std::function<Outcome<bool>(const StoredFavorite&, bool isAdded)> change;
  /// Gives a favourite the choice in it; false when that changes nothing. Used only with `change`.
  std::function<Outcome<bool>(const StoredFavorite&)> choose;
  /// Loads the lines of every feed that can be read. Calls the argument once, at once or later, on the main
  /// thread.
  std::function<void(std::function<void(const FeedLines&)>)> loadLines;
  /// Called after each change.
  std::function<void()> didChange;
};

/// Shows the favourite lines, or the lines that a search finds. The user adds and removes favourites, and
/// chooses which incidents of a favourite are shown. A removed line stays in the list until the next search;
/// if the user adds it back, it has its former choice.
class FavoritesWindow final : public CompanionWindow {
 public:
  /// The largest number of lines in the list.
  static constexpr std::size_t kMostLines = 200;

  FavoritesWindow(SharedWindowTexts texts, FavoritesServices services);

  /// Shows the favourites, or all lines if there are no favourites. If the favourites cannot be read, the
  /// window tries again every second.
  void present();
  /// Shows changes that another program or window has made. The current line and the scroll position stay.
  void followChanges();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void showTitle();
  void readAgain();
  void loadLines();
  void linesDidLoad(const FeedLines& lines);
  void showLines();
  void showLinesAgain();
  void showMarks();
  void showFound(const std::vector<FoundLine>& found);
  void showFavorites();
  void showHint(const QString& hint);
  void showError(const Error& error);
  void setFavorites(std::vector<StoredFavorite> favorites);
  /// Null when the line is no favourite.
  const StoredFavorite* favoriteFor(const StoredFavorite& line) const;
  FavoriteList::Mark markOf(const StoredFavorite& line) const;
  void addLine(const FavoriteList::Entry& entry);
  FavoriteList::Entry entryOf(const FoundLine& line);
  FavoriteList::Entry entryOf(const StoredFavorite& favorite);
  void goToList();
  bool change(const StoredFavorite& line, bool isAdded);
  void showMenu(const StoredFavorite& line, const QPoint& place);
  void choose(StoredFavorite favorite, const LineChoice& choice);

  FavoritesServices services_;
  QLineEdit* search_ = nullptr;
  QLabel* hint_ = nullptr;
  FavoriteList* list_ = nullptr;
  /// Runs while the favourites cannot be read.
  QTimer* retry_ = nullptr;

  std::vector<StoredFavorite> favorites_;
  /// Favourites that were removed while the window was open, with their choices.
  std::vector<StoredFavorite> removed_;
  /// Why the favourites cannot be read. Nothing can be changed then.
  std::optional<Error> favoritesError_;
  FeedLines lines_;
  bool areLinesLoaded_ = false;
  std::map<const LineIndex*, LineRecords> records_;
  /// Whether the list shows the favourites, and not the result of a search.
  bool listsFavorites_ = false;
};

}  // namespace linewatch::desktop
