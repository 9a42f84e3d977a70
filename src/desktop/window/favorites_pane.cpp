#include "desktop/window/favorites_pane.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "desktop/window/line_choice_window.h"
#include "desktop/window/notify_choice.h"
#include "desktop/window/outlined_field.h"
#include "desktop/window/row_menu_button.h"
#include "desktop/window/window_style.h"
#include "feeds/user_favorites.h"
#include "platform/log.h"
#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

constexpr std::int64_t kListedShieldStep = 3;
constexpr int kRetryMilliseconds = 1000;

/// The favourite in the list for the same line; null when there is none.
const StoredFavorite* findSame(const std::vector<StoredFavorite>& favorites, const StoredFavorite& line) {
  const auto found =
      std::ranges::find_if(favorites, [&](const StoredFavorite& other) { return other.isSameAs(line); });
  return found == favorites.end() ? nullptr : &*found;
}

FavoriteModel::Row rowOf(const FoundLine& line, bool isInGroup = false) {
  return {.favorite = favoriteOf(line), .line = line, .isInGroup = isInGroup};
}

/// The key of the mode's name; empty for modes without a name.
std::string_view keyOf(TransitMode mode) {
  constexpr std::array<std::string_view, 8> kKeys = {"",         "ModeBus",   "ModeTram",  "ModeMetro",
                                                     "ModeRail", "ModeFerry", "ModeCable", "ModeAir"};
  const auto number = static_cast<std::size_t>(mode);
  return number < kKeys.size() ? kKeys[number] : "";
}

/// The names that agencies of more than one feed have.
std::set<std::string> agencyNamesOfSeveral(const std::vector<SharedLineIndex>& feeds) {
  std::set<std::string> seen, shared;
  for (const SharedLineIndex& feed : feeds) {
    std::set<std::string> names;
    for (const FeedAgency& agency : feed->agencies()) names.insert(agency.name);
    for (const std::string& name : names) {
      if (!seen.insert(name).second) shared.insert(name);
    }
  }
  return shared;
}

}  // namespace

FavoritesPane::FavoritesPane(SharedWindowTexts texts, FavoritesServices services,
                             std::shared_ptr<ArtworkDataSourceCache> cache, std::string feed)
    : texts_(std::move(texts)), services_(std::move(services)), feed_(std::move(feed)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kWindowMargin / 2);
  search_ = new OutlinedField;
  search_->setFont(windowFont(kWindowNameSize));
  search_->setPlaceholderText((*texts_)("Search"));
  search_->setAccessibleName((*texts_)("Search"));
  search_->setClearButtonEnabled(true);
  search_->installEventFilter(this);
  connect(search_, &QLineEdit::textChanged, this, [this] {
    list_->scrollToTop();
    showLines();
  });
  hint_ = plainLabel({}, windowFont(kWindowNoteSize), TextTone::faint);
  makeList(std::move(cache));
  for (QWidget* const part : {static_cast<QWidget*>(search_), static_cast<QWidget*>(hint_)}) {
    auto* const row = new QHBoxLayout;
    row->setContentsMargins(kWindowMargin, 0, kWindowMargin, 0);
    row->addWidget(part);
    layout->addLayout(row);
  }
  layout->addWidget(list_, 1);
  if (services_.change) list_->setMenuButton(new RowMenuButton(this), (*texts_)("LineOptions"));
  setFocusProxy(search_);
  retry_ = new QTimer(this);
  retry_->setInterval(kRetryMilliseconds);
  connect(retry_, &QTimer::timeout, this, [this] { readAgain(); });
}

FavoritesPane::~FavoritesPane() { delete choice_; }

void FavoritesPane::makeList(std::shared_ptr<ArtworkDataSourceCache> cache) {
  FavoriteModel::Source source{
      .describe = [this](const Row& row) { return describe(row); },
      .mark = [this](const StoredFavorite& line) { return markOf(line); },
  };
  FavoriteList::Handlers handlers;
  if (services_.change) {
    source.change = [this](const StoredFavorite& line, bool isAdded) { return change(line, isAdded); };
    handlers.reorder = [this](const std::vector<StoredFavorite>& order) { return reorder(order); };
    handlers.showMenu = [this](const StoredFavorite& line) { showChoice(line); };
  }
  const QFont name = windowFont(kWindowNameSize, QFont::Medium), details = windowFont(kWindowNoteSize),
              heading = windowFont(kWindowNoteSize, QFont::DemiBold);
  list_ = new FavoriteList(std::move(source), std::move(cache), windowArtworkStep(kListedShieldStep),
                           windowTextScale(), {name, details, heading}, std::move(handlers));
  list_->setAccessibleName((*texts_)("FavoritesTitle"));
}

QString FavoritesPane::query() const { return search_->text().trimmed(); }

std::size_t FavoritesPane::favoriteCount() const {
  return static_cast<std::size_t>(std::ranges::count_if(
      favorites_, [this](const StoredFavorite& each) { return feed_.empty() || each.feed == feed_; }));
}

bool FavoritesPane::clearSearch() {
  if (search_->text().isEmpty()) return false;
  search_->clear();
  search_->setFocus(Qt::OtherFocusReason);
  return true;
}

FavoritesPane::View FavoritesPane::view() const {
  View view{.search = search_->text(), .scrolledTo = list_->verticalScrollBar()->value()};
  if (choice_ && choice_->isVisible()) view.choice = {chosenLine_, choice_->place()};
  return view;
}

void FavoritesPane::restore(const View& view) {
  search_->setText(view.search);
  wantedView_ = view;
  showWantedView();
}

void FavoritesPane::showWantedView() {
  if (!areLinesLoaded_ || !wantedView_) return;
  const View wanted = *std::exchange(wantedView_, std::nullopt);
  list_->doItemsLayout();
  list_->verticalScrollBar()->setValue(wanted.scrolledTo);
  if (wanted.choice) showChoice(wanted.choice->first, &wanted.choice->second);
}

// ---- Reading ----

void FavoritesPane::present() {
  const auto stored = services_.favorites();
  setFavorites(stored ? *stored : std::vector<StoredFavorite>());
  ownLines_ = favorites_;
  favoritesError_ = stored ? std::nullopt : std::optional(stored.error());
  const QSignalBlocker blocker(search_);
  search_->clear();
  search_->setEnabled(stored && services_.change);
  areLinesLoaded_ = false;
  favoritesDidChange();
  loadLines();
  if (favoritesError_) {
    retry_->start();
  } else {
    retry_->stop();
  }
}

void FavoritesPane::readAgain() {
  if (!isVisible()) return retry_->stop();
  followChanges();
}

/// If the favourites cannot be read, the pane assumes that they have not changed.
void FavoritesPane::followChanges() {
  auto stored = services_.favorites();
  if (!stored) {
    if (favoritesError_) showError(favoritesError_.emplace(stored.error()));
    return;
  }
  setFavorites(std::move(*stored));
  if (std::exchange(favoritesError_, std::nullopt)) {
    retry_->stop();
    search_->setEnabled(static_cast<bool>(services_.change));
    search_->setFocus(Qt::OtherFocusReason);
  }
  favoritesDidChange();
  loadLines();
}

void FavoritesPane::loadLines() {
  services_.loadLines([pane = QPointer<FavoritesPane>(this)](const FeedLines& lines) {
    if (pane) pane->linesDidLoad(lines);
  });
}

void FavoritesPane::linesDidLoad(const FeedLines& lines) {
  const auto reasonOf = [this](const FeedLines& loaded) {
    return loaded.error ? texts_->reason(*loaded.error) : std::string();
  };
  FeedLines listed = lines;
  if (!feed_.empty()) {
    std::erase_if(listed.indexes,
                  [this](const SharedLineIndex& index) { return index->feedName() != feed_; });
    if (!listed.indexes.empty()) listed.error.reset();
  }
  const bool areNew = listed.indexes != lines_.indexes || reasonOf(listed) != reasonOf(lines_);
  if (std::exchange(areLinesLoaded_, true) && !areNew) return;
  records_.clear();
  lines_ = std::move(listed);
  groups_ = groupedLines(lines_.indexes);
  sharedAgencyNames_ = agencyNamesOfSeveral(lines_.indexes);
  showLines();
  showWantedView();
  logDebug("The lines of %lu feeds are listed", {static_cast<std::int64_t>(lines_.indexes.size())});
}

// ---- The list ----

/// Keeps the current line and its place in the window.
void FavoritesPane::showLines() {
  std::vector<Row> rows;
  if (!favoritesError_ && areLinesLoaded_) rows = query().isEmpty() ? allRows() : foundRows();
  const auto lineCount =
      static_cast<std::size_t>(std::ranges::count_if(rows, [](const Row& row) { return !row.isHeading(); }));
  list_->replaceRows(std::move(rows));
  showUsualHint(lineCount);
  // The error replaces other hints, because it explains why lines are missing.
  if (favoritesError_) return showError(*favoritesError_);
  if (areLinesLoaded_ && lines_.error) showError(*lines_.error);
}

std::vector<FavoritesPane::Row> FavoritesPane::ownRows() const {
  std::vector<Row> rows;
  for (const StoredFavorite& favorite : ownLines_) {
    const auto index = std::ranges::find(lines_.indexes, favorite.feed, &LineIndex::feedName);
    const auto route = index == lines_.indexes.end() ? std::nullopt : (*index)->routeWithId(favorite.subject);
    rows.push_back({.favorite = favorite,
                    .line = route ? std::optional(FoundLine{*index, *route}) : std::nullopt,
                    .isOrdered = true});
  }
  return rows;
}

std::vector<FavoritesPane::Row> FavoritesPane::allRows() const {
  std::vector<Row> rows;
  if (feed_.empty() && !ownLines_.empty()) {
    rows = ownRows();
    rows.insert(rows.begin(), {.heading = (*texts_)("YourLines")});
  }
  for (const LineGroup& group : groups_) {
    rows.push_back({.heading = headingOf(group)});
    for (const std::size_t route : group.routes) rows.push_back(rowOf({group.index, route}, true));
  }
  return rows;
}

std::vector<FavoritesPane::Row> FavoritesPane::foundRows() const {
  std::vector<Row> rows;
  for (const FoundLine& line : searchLines(lines_.indexes, query().toStdString()))
    rows.push_back(rowOf(line));
  return rows;
}

/// The agency's name. If two feeds have agencies of this name, the feed's name tells them apart.
QString FavoritesPane::agencyIn(const LineIndex& index, const std::string& agency) const {
  const std::string& feed = index.feedName();
  if (agency.empty() || !sharedAgencyNames_.contains(agency)) return QString::fromStdString(agency);
  return QString::fromStdString(feed.starts_with(agency) ? feed : agency + " (" + feed + ")");
}

QString FavoritesPane::headingOf(const LineGroup& group) const {
  const std::string& feed = group.index->feedName();
  const std::string agency = group.agency ? group.index->agencies()[*group.agency].name : feed;
  const QString name = agency.empty() ? QString::fromStdString(feed) : agencyIn(*group.index, agency);
  const std::string_view mode = keyOf(group.mode);
  return mode.empty() ? name : name + QStringLiteral(" · ") + (*texts_)(mode);
}

void FavoritesPane::showUsualHint(std::size_t lineCount) {
  if (!favoritesError_ && !areLinesLoaded_) return showHint((*texts_)("LoadingLines"));
  if (!services_.change) return showHint((*texts_)("FavoritesGiven"));
  if (!query().isEmpty())
    return showHint(lineCount == 0 ? (*texts_)("NoLineFits", {query().toStdString()}) : QString());
  if (!feed_.empty()) return showHint({});
  showHint((*texts_)(ownLines_.empty() ? "NoFavorites" : "OrderHint"));
}

void FavoritesPane::showHint(const QString& hint) {
  hint_->setText(hint);
  hint_->setVisible(!hint.isEmpty());
}

void FavoritesPane::showError(const Error& error) { showHint(QString::fromStdString(texts_->reason(error))); }

FavoriteModel::Description FavoritesPane::describe(const Row& row) {
  if (!row.line)
    return {(*texts_)("UnknownLine", {row.favorite.subject}), QString::fromStdString(row.favorite.feed)};
  const FoundLine& line = *row.line;
  LineRecords& records = records_.try_emplace(line.index.get(), line.index).first->second;
  return {QString::fromStdString(line.longName()), agencyIn(*line.index, line.agencyName()),
          records.lineFieldsOfRoute(line.route)->artwork};
}

/// Adds new favourites to the user's lines. Removed ones stay there, so that they can be added back.
void FavoritesPane::setFavorites(std::vector<StoredFavorite> favorites) {
  favorites_ = std::move(favorites);
  for (const StoredFavorite& favorite : favorites_) {
    const auto known = std::ranges::find_if(
        ownLines_, [&](const StoredFavorite& other) { return other.isSameAs(favorite); });
    if (known == ownLines_.end()) {
      ownLines_.push_back(favorite);
    } else {
      known->choice = favorite.choice;
    }
  }
}

const StoredFavorite* FavoritesPane::favoriteFor(const StoredFavorite& line) const {
  return findSame(favorites_, line);
}

FavoriteModel::Mark FavoritesPane::markOf(const StoredFavorite& line) const {
  const StoredFavorite* const favorite = favoriteFor(line);
  if (!favorite) return {};
  const auto stops = stops_.find({line.feed, line.subject});
  return {true, choiceInWords(favorite->choice, stops == stops_.end() ? nullptr : &stops->second, *texts_)};
}

void FavoritesPane::favoritesDidChange() {
  showLines();
  if (favoritesDidChange_) favoritesDidChange_();
}

// ---- Changes ----

bool FavoritesPane::change(const StoredFavorite& line, bool isAdded) {
  const StoredFavorite* const known = findSame(ownLines_, line);
  const StoredFavorite favorite = isAdded && known ? *known : line;
  const auto changed = services_.change(favorite, isAdded);
  if (!changed) {
    showError(changed.error());
    return false;
  }
  if (!*changed) return true;
  std::vector<StoredFavorite> favorites = favorites_;
  std::erase_if(favorites, [&](const StoredFavorite& other) { return other.isSameAs(line); });
  if (isAdded) favorites.push_back(favorite);
  setFavorites(std::move(favorites));
  // First, because which feeds are shown may depend on the favourites.
  services_.didChange();
  favoritesDidChange();
  list_->announceStar(line);
  return true;
}

/// `order` may hold removed favourites. After a failure the rows go back to the saved order.
bool FavoritesPane::reorder(const std::vector<StoredFavorite>& order) {
  std::vector<StoredFavorite> favorites;
  for (const StoredFavorite& line : order) {
    if (const StoredFavorite* const favorite = favoriteFor(line)) favorites.push_back(*favorite);
  }
  const auto changed = services_.reorder(favorites);
  if (changed) {
    favorites_ = std::move(favorites);
    ownLines_ = order;
  }
  showLines();
  if (!changed) showError(changed.error());
  if (changed && *changed) services_.didChange();
  return static_cast<bool>(changed);
}

void FavoritesPane::showChoice(const StoredFavorite& line, const WindowPlace* place) {
  const StoredFavorite* const favorite = favoriteFor(line);
  if (!favorite) return;
  const auto row = list_->rows().find(*favorite, false);
  const QString name = row ? list_->rows().index(*row).data().toString() : QString();
  delete choice_;
  chosenLine_ = *favorite;
  choice_ = new LineChoiceWindow(texts_, name, favorite->choice,
                                 [pane = QPointer(this), favorite = *favorite](const LineChoice& choice) {
                                   if (pane) pane->choose(favorite, choice);
                                 });
  addNotifications(*favorite);
  if (place) choice_->setPlace(*place);
  choice_->present();
  if (!services_.loadStops) return choice_->showStops(LineStops());
  services_.loadStops(*favorite, [pane = QPointer(this), window = choice_,
                                  favorite = *favorite](const Outcome<LineStops>& stops) {
    if (window) window->showStops(stops);
    if (!pane || !stops) return;
    pane->stops_[{favorite.feed, favorite.subject}] = *stops;
    pane->list_->rows().marksDidChange();
  });
}

void FavoritesPane::addNotifications(const StoredFavorite& favorite) {
  if (!services_.subscription) return;
  const auto present = services_.subscription(favorite);
  if (!present) return showError(present.error());
  const auto save = [subscribe = services_.subscribe,
                     favorite](const std::optional<notices::Subscription>& wanted) {
    return subscribe(favorite, wanted);
  };
  choice_->addNotifications(new NotifyChoice(texts_, {favorite.feed, favorite.subject}, *present, save));
}

void FavoritesPane::choose(StoredFavorite favorite, const LineChoice& choice) {
  favorite.choice = choice;
  const auto changed = services_.choose(favorite);
  if (!changed) return showError(changed.error());
  for (std::vector<StoredFavorite>* const list : {&favorites_, &ownLines_}) {
    for (StoredFavorite& other : *list) {
      if (other.isSameAs(favorite)) other.choice = choice;
    }
  }
  list_->rows().marksDidChange();
  if (*changed) services_.didChange();
}

/// In the search field, Enter and Down lead to the list.
bool FavoritesPane::eventFilter(QObject* watched, QEvent* event) {
  const bool isKey = watched == search_ && event->type() == QEvent::KeyPress && list_->rows().rowCount() > 0;
  const int key = isKey ? static_cast<const QKeyEvent*>(event)->key() : 0;
  if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Down)
    return QWidget::eventFilter(watched, event);
  list_->ensureCurrent();
  list_->setFocus(Qt::TabFocusReason);
  return true;
}

}  // namespace linewatch::desktop
