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

/// What the favourites window needs of the program around it.
struct FavoritesServices {
  std::function<Outcome<std::vector<StoredFavorite>>()> favorites;
  /// Adds or removes a favourite; false when that changes nothing. Empty when the favourites cannot be
  /// changed.
  std::function<Outcome<bool>(const StoredFavorite&, bool isAdded)> change;
  /// Loads the lines of every feed that can be read, and calls back once, at once or later, on the main
  /// thread.
  std::function<void(std::function<void(const FeedLines&)>)> loadLines;
  /// Called after each change.
  std::function<void()> didChange;
};

/// Shows the favourite lines, or the lines that a search finds, and lets the user add and remove favourites.
/// A removed line stays in the list until the next search, so that it can be added back.
class FavoritesWindow final : public CompanionWindow {
 public:
  /// The most lines that are listed.
  static constexpr std::size_t kMostLines = 200;

  FavoritesWindow(SharedWindowTexts texts, FavoritesServices services);

  /// Shows the present favourites, or lines to choose from if there are none. While the favourites cannot be
  /// read, the open window tries again every second.
  void present();
  /// Shows changes that were made elsewhere, without moving the user's place in the list. After an error the
  /// search gets the focus.
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
  bool isFavorite(const StoredFavorite& line) const;
  void addLine(const FavoriteList::Entry& entry);
  FavoriteList::Entry entryOf(const FoundLine& line);
  FavoriteList::Entry entryOf(const StoredFavorite& favorite);
  void goToList();
  bool change(const StoredFavorite& favorite, bool isAdded);

  FavoritesServices services_;
  QLineEdit* search_ = nullptr;
  QLabel* hint_ = nullptr;
  FavoriteList* list_ = nullptr;
  /// Runs as long as the favourites cannot be read.
  QTimer* retry_ = nullptr;

  std::vector<StoredFavorite> favorites_;
  /// Why the favourites cannot be read, in which case nothing can be chosen; absent when they can.
  std::optional<Error> favoritesError_;
  FeedLines lines_;
  bool areLinesLoaded_ = false;
  std::map<const LineIndex*, LineRecords> records_;
  /// Whether the list shows the favourites, not the lines that a search found.
  bool listsFavorites_ = false;
};

}  // namespace linewatch::desktop
