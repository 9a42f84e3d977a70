#pragma once

#include <QPointer>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "desktop/window/companion_window.h"
#include "feeds/gtfs/line_records.h"
#include "feeds/gtfs/line_search.h"
#include "feeds/transit_feeds.h"
#include "shared/outcome.h"
#include "storage/stored_favorites.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QTimer;

namespace linewatch::desktop {

/// Where the favourites window has its lines from.
struct FavoritesServices {
  std::function<Outcome<std::vector<StoredFavorite>>()> favorites;
  /// Adds or removes; false when that changes nothing. Empty when the favourites cannot be changed.
  std::function<Outcome<bool>(const StoredFavorite&, bool isAdded)> change;
  /// Loads the lines of every feed that can be read and calls once, then or later, on the main thread.
  std::function<void(std::function<void(const FeedLines&)>)> loadLines;
  /// Called after each change.
  std::function<void()> didChange;
};

/// Shows the favourite lines, or the lines that a search finds, and makes lines favourites or no longer.
/// A line that was removed stays in the list until another search, so that it can be taken back.
class FavoritesWindow final : public CompanionWindow {
 public:
  /// How many lines are listed at most.
  static constexpr std::size_t kMostLines = 200;

  FavoritesWindow(SharedWindowTexts texts, FavoritesServices services);

  /// Shows the favourites as they are now; when there are none, lines to choose from. Those that cannot be
  /// read are tried again as long as the window is open.
  void present();
  /// Takes up what has been changed elsewhere, and leaves the user where they are; in the search when nothing
  /// could be read before.
  void followChanges();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Entry {
    StoredFavorite favorite;
    QString name;
    QString agency;
    SharedArtwork artwork;
  };

  void showTitle();
  void readAgain();
  void loadLines();
  void linesDidLoad(const FeedLines& lines);
  void showLines();
  void showLinesAgain();
  void showChoice();
  void showFound(const std::vector<FoundLine>& found);
  void showFavorites();
  void showHint(const QString& hint);
  void showError(const Error& error);
  bool isFavorite(const StoredFavorite& line) const;
  void addEntry(const Entry& entry);
  Entry entryOf(const FoundLine& line);
  Entry entryOf(const StoredFavorite& favorite);
  void goToList();
  void changeCurrentLine();
  void itemDidChange(QListWidgetItem* item);

  FavoritesServices services_;
  QLineEdit* search_ = nullptr;
  QLabel* hint_ = nullptr;
  QListWidget* list_ = nullptr;
  /// Runs while the favourites cannot be read.
  QTimer* retry_ = nullptr;

  std::vector<StoredFavorite> favorites_;
  /// Why they are not known, and nothing can be chosen; absent when they are.
  std::optional<Error> favoritesError_;
  FeedLines lines_;
  bool areLinesLoaded_ = false;
  std::map<const LineIndex*, LineRecords> records_;
  std::vector<StoredFavorite> listed_;
  /// Whether these are the favourites, not lines that were found.
  bool listsFavorites_ = false;
};

}  // namespace linewatch::desktop
