#pragma once

#include <QPointer>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "desktop/window/companion_window.h"
#include "desktop/window/favorite_list.h"
#include "desktop/window/window_texts.h"
#include "feeds/gtfs/grouped_lines.h"
#include "feeds/gtfs/line_records.h"
#include "feeds/gtfs/line_search.h"
#include "feeds/gtfs/line_stops.h"
#include "feeds/transit_feeds.h"
#include "notices/notice_rules.h"
#include "shared/outcome.h"
#include "storage/stored_favorites.h"
#include "ui/artwork_cache.h"

class QLabel;
class QLineEdit;
class QTimer;

namespace linewatch::desktop {

class LineChoiceWindow;

/// Functions of the program with which a window shows and changes the favourites.
struct FavoritesServices {
  std::function<Outcome<std::vector<StoredFavorite>>()> favorites;
  /// Adds or removes a favourite; false when that changes nothing. An empty function when the favourites
  /// cannot be changed.
  std::function<Outcome<bool>(const StoredFavorite&, bool isAdded)> change;
  /// Gives a favourite the choice in it; false when that changes nothing. Used only with `change`.
  std::function<Outcome<bool>(const StoredFavorite&)> choose;
  /// The notifications that the user wants of a favourite; absent if there are none. Empty functions when
  /// there can be no notifications.
  std::function<Outcome<std::optional<notices::Subscription>>(const StoredFavorite&)> subscription = {};
  std::function<std::optional<Error>(const StoredFavorite&, const std::optional<notices::Subscription>&)>
      subscribe = {};
  /// Puts favourites into this order; false when that changes nothing. Used only with `change`.
  std::function<Outcome<bool>(const std::vector<StoredFavorite>&)> reorder;
  /// Reads where the line of a favourite goes. Calls the argument once, later, on the main thread. An empty
  /// function when that is not known.
  std::function<void(const StoredFavorite&, std::function<void(const Outcome<LineStops>&)>)> loadStops = {};
  /// Loads the lines of every feed that can be read. Calls the argument once, at once or later, on the main
  /// thread.
  std::function<void(std::function<void(const FeedLines&)>)> loadLines;
  /// Called after each change.
  std::function<void()> didChange;
  /// Whether the lines are those of the made-up city; without it they never are.
  std::function<bool()> isExample = {};
  /// The feeds of favourites that the user has removed; without it there are none.
  std::function<std::vector<std::string>()> removedFeeds = {};
  /// Leads to the choice of a city. Used only with `isExample` and `removedFeeds`.
  std::function<void()> chooseCity = {};
};

/// The lines that can be favourites, with a search field. Without a search the user's own lines come first,
/// in their order, then all lines by agency and mode. The user adds and removes favourites, puts them in
/// order, and chooses which incidents of a favourite are shown. A removed favourite stays among the user's
/// lines until the pane is presented again; if the user adds it back, it has its former choice. Main thread.
class FavoritesPane final : public QWidget {
 public:
  /// `feed`: the only feed whose lines are listed, without the user's own lines; empty for every feed.
  FavoritesPane(SharedWindowTexts texts, FavoritesServices services,
                std::shared_ptr<ArtworkDataSourceCache> cache, std::string feed = {});

  ~FavoritesPane() override;

  /// Reads everything again. If the favourites cannot be read, the pane tries again every second.
  void present();
  /// Shows changes that another program or window has made. The current line and the scroll position stay.
  void followChanges();
  /// True when the favourites can be read and there are none.
  bool hasNoFavorites() const { return !favoritesError_ && favorites_.empty(); }
  /// The number of favourites among the listed feeds.
  std::size_t favoriteCount() const;
  /// Whether there are favourites that are not among the listed feeds.
  bool hasOtherFavorites() const { return favoriteCount() < favorites_.size(); }
  /// What the pane shows, for a pane in another language.
  struct View {
    QString search;
    /// Points from the start of the list.
    int scrolledTo = 0;
    /// The line whose choice is open, and the place of that window.
    std::optional<std::pair<StoredFavorite, WindowPlace>> choice = {};
  };
  View view() const;
  /// To be called after `present`. The list scrolls once the lines are loaded.
  void restore(const View& view);
  /// False when there was no search.
  bool clearSearch();
  /// Called after the favourites have changed, here or elsewhere, or can be read again.
  void setChangeHandler(std::function<void()> handler) { favoritesDidChange_ = std::move(handler); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  using Row = FavoriteModel::Row;

  void makeList(std::shared_ptr<ArtworkDataSourceCache> cache);
  QString query() const;
  void readAgain();
  void loadLines();
  void linesDidLoad(const FeedLines& lines);
  void showLines();
  std::vector<Row> ownRows() const;
  std::vector<Row> allRows() const;
  std::vector<Row> foundRows() const;
  QString agencyIn(const LineIndex& index, const std::string& agency) const;
  QString headingOf(const LineGroup& group) const;
  void showUsualHint(std::size_t lineCount);
  void showHint(const QString& hint);
  void showError(const Error& error);
  FavoriteModel::Description describe(const Row& row);
  void setFavorites(std::vector<StoredFavorite> favorites);
  /// Null when the line is no favourite.
  const StoredFavorite* favoriteFor(const StoredFavorite& line) const;
  FavoriteModel::Mark markOf(const StoredFavorite& line) const;
  void favoritesDidChange();
  bool change(const StoredFavorite& line, bool isAdded);
  bool reorder(const std::vector<StoredFavorite>& order);
  void showWantedView();
  void showChoice(const StoredFavorite& line, const WindowPlace* place = nullptr);
  void addNotifications(const StoredFavorite& favorite);
  void choose(StoredFavorite favorite, const LineChoice& choice);

  SharedWindowTexts texts_;
  FavoritesServices services_;
  std::string feed_;
  std::function<void()> favoritesDidChange_;
  QLineEdit* search_ = nullptr;
  QLabel* hint_ = nullptr;
  FavoriteList* list_ = nullptr;
  /// Runs while the favourites cannot be read.
  QTimer* retry_ = nullptr;

  std::vector<StoredFavorite> favorites_;
  /// Favourites and removed favourites, in the order of their rows.
  std::vector<StoredFavorite> ownLines_;
  /// Why the favourites cannot be read. Nothing can be changed then.
  std::optional<Error> favoritesError_;
  FeedLines lines_;
  std::vector<LineGroup> groups_;
  /// Agencies of different feeds have these names.
  std::set<std::string> sharedAgencyNames_;
  bool areLinesLoaded_ = false;
  std::map<const LineIndex*, LineRecords> records_;
  /// Where lines go, by feed and route id; of lines whose choices have been shown.
  std::map<std::pair<std::string, std::string>, LineStops> stops_;
  QPointer<LineChoiceWindow> choice_;
  /// The line of `choice_`.
  StoredFavorite chosenLine_;
  /// To be shown once the lines are loaded.
  std::optional<View> wantedView_;
};

}  // namespace linewatch::desktop
