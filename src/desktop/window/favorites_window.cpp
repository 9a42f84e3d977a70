#include "desktop/window/favorites_window.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QSignalBlocker>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "desktop/window/line_choice_menu.h"
#include "desktop/window/window_colors.h"
#include "feeds/user_favorites.h"
#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kFavoritesWidth = 420;
constexpr int kFavoritesHeight = 560;
constexpr int kFavoritesMargin = 16;
constexpr int kFieldInset = 7;
constexpr double kFieldRadius = 8;
constexpr double kSearchSize = 14;
constexpr double kLineNameSize = 14;
constexpr double kAgencySize = 12;
constexpr double kHintSize = 13;
constexpr std::int64_t kListedShieldStep = 3;
constexpr int kRetryMilliseconds = 1000;

/// A search field with a rounded outline. The class paints the outline itself, because a style sheet keeps
/// the old colours when the palette changes.
class OutlinedField final : public QLineEdit {
 public:
  OutlinedField() {
    setFrame(false);
    setTextMargins(kFieldInset, kFieldInset, kFieldInset, kFieldInset);
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double width = hasFocus() ? 2 : 1;
    painter.setPen(QPen(palette().color(hasFocus() ? QPalette::Highlight : kOutlineRole), width));
    const double inset = width / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), kFieldRadius,
                            kFieldRadius);
  }
};

/// The favourite in the list for the same line; null when there is none.
const StoredFavorite* findSame(const std::vector<StoredFavorite>& favorites, const StoredFavorite& line) {
  const auto found =
      std::ranges::find_if(favorites, [&](const StoredFavorite& other) { return other.isSameAs(line); });
  return found == favorites.end() ? nullptr : &*found;
}

}  // namespace

FavoritesWindow::FavoritesWindow(SharedWindowTexts texts, FavoritesServices services)
    : CompanionWindow(std::move(texts)), services_(std::move(services)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, kFavoritesMargin, 0, 0);
  layout->setSpacing(kFavoritesMargin / 2);
  search_ = new OutlinedField;
  search_->setFont(font(kSearchSize));
  search_->setPlaceholderText(this->texts()("Search"));
  search_->setAccessibleName(this->texts()("Search"));
  search_->setClearButtonEnabled(true);
  search_->installEventFilter(this);
  connect(search_, &QLineEdit::textChanged, this, [this] { showLines(); });
  hint_ = makeLabel({}, font(kHintSize), Tone::faint);
  FavoriteList::Handlers handlers;
  if (services_.change) {
    handlers.change = [this](const StoredFavorite& line, bool isAdded) { return change(line, isAdded); };
    handlers.showMenu = [this](const StoredFavorite& line, const QPoint& place) { showMenu(line, place); };
  }
  list_ = new FavoriteList(artworkCache(), artworkStep(kListedShieldStep), font(kLineNameSize, QFont::Medium),
                           font(kAgencySize), std::move(handlers));
  list_->setAccessibleName(this->texts()("FavoritesTitle"));
  for (QWidget* const part : {static_cast<QWidget*>(search_), static_cast<QWidget*>(hint_)}) {
    auto* const row = new QHBoxLayout;
    row->setContentsMargins(kFavoritesMargin, 0, kFavoritesMargin, 0);
    row->addWidget(part);
    layout->addLayout(row);
  }
  layout->addWidget(list_, 1);
  retry_ = new QTimer(this);
  retry_->setInterval(kRetryMilliseconds);
  connect(retry_, &QTimer::timeout, this, [this] { readAgain(); });
  resize(kFavoritesWidth, kFavoritesHeight);
}

void FavoritesWindow::showTitle() {
  setWindowTitle(texts()(!favoritesError_ && favorites_.empty() ? "AddFavoritesTitle" : "FavoritesTitle"));
}

void FavoritesWindow::present() {
  const auto stored = services_.favorites();
  setFavorites(stored ? *stored : std::vector<StoredFavorite>());
  favoritesError_ = stored ? std::nullopt : std::optional(stored.error());
  showTitle();
  const QSignalBlocker blocker(search_);
  search_->clear();
  search_->setEnabled(stored && services_.change);
  areLinesLoaded_ = false;
  showLines();
  showInFront();
  search_->setFocus(Qt::OtherFocusReason);
  loadLines();
  if (favoritesError_) {
    retry_->start();
  } else {
    retry_->stop();
  }
}

void FavoritesWindow::readAgain() {
  if (!isVisible()) return retry_->stop();
  followChanges();
}

/// If the favourites cannot be read, the window assumes that they have not changed.
void FavoritesWindow::followChanges() {
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
    showTitle();
    showLines();
  } else {
    showMarks();
  }
  loadLines();
}

void FavoritesWindow::loadLines() {
  services_.loadLines([window = QPointer<FavoritesWindow>(this)](const FeedLines& lines) {
    if (window) window->linesDidLoad(lines);
  });
}

void FavoritesWindow::linesDidLoad(const FeedLines& lines) {
  const auto reasonOf = [](const FeedLines& loaded) {
    return loaded.error ? sentenceOf(*loaded.error) : std::string();
  };
  const bool areNew = lines.indexes != lines_.indexes || reasonOf(lines) != reasonOf(lines_);
  if (std::exchange(areLinesLoaded_, true) && !areNew) return;
  records_.clear();
  lines_ = lines;
  showLinesAgain();
}

// ---- The list ----

void FavoritesWindow::showLines() {
  list_->clearEntries();
  listsFavorites_ = false;
  showHint({});
  if (favoritesError_) return showError(*favoritesError_);
  const QString query = search_->text().trimmed();
  if (!areLinesLoaded_) return showHint(texts()("LoadingLines"));
  if (query.isEmpty() && !favorites_.empty()) {
    showFavorites();
  } else {
    showFound(searchLines(lines_.indexes, query.toStdString()));
  }
  // The error replaces other hints, because it explains why lines are missing.
  if (lines_.error) showError(*lines_.error);
}

/// Keeps the current line and the scroll position.
void FavoritesWindow::showLinesAgain() {
  const FavoriteList::Place place = list_->place();
  showLines();
  list_->restore(place);
}

/// Updates the marks. If the list shows the favourites, new ones are added to it; removed ones stay, as if
/// the user had removed them here.
void FavoritesWindow::showMarks() {
  list_->setMarks([this](const StoredFavorite& line) { return markOf(line); });
  if (!listsFavorites_) return;
  for (const StoredFavorite& favorite : favorites_) {
    if (!list_->contains(favorite)) addLine(entryOf(favorite));
  }
}

void FavoritesWindow::showFound(const std::vector<FoundLine>& found) {
  for (const FoundLine& line : std::span(found).first(std::min(found.size(), kMostLines)))
    addLine(entryOf(line));
  if (search_->text().trimmed().isEmpty()) {
    showHint(texts()("NoFavorites"));
  } else if (found.empty()) {
    showHint(texts()("NoLineFits", {search_->text().trimmed().toStdString()}));
  } else if (found.size() > kMostLines) {
    showHint(texts()("MoreLines", {std::uint64_t{found.size() - kMostLines}}));
  }
}

void FavoritesWindow::showFavorites() {
  listsFavorites_ = true;
  for (const StoredFavorite& favorite : favorites_) addLine(entryOf(favorite));
  showHint(texts()(services_.change ? "ChoiceHint" : "FavoritesGiven"));
}

void FavoritesWindow::showHint(const QString& hint) {
  hint_->setText(hint);
  hint_->setVisible(!hint.isEmpty());
}

void FavoritesWindow::showError(const Error& error) { showHint(QString::fromStdString(sentenceOf(error))); }

FavoriteList::Entry FavoritesWindow::entryOf(const FoundLine& line) {
  LineRecords& records = records_.try_emplace(line.index.get(), line.index).first->second;
  return {favoriteOf(line), QString::fromStdString(line.longName()),
          QString::fromStdString(line.agencyName()), records.lineFieldsOfRoute(line.route)->artwork};
}

FavoriteList::Entry FavoritesWindow::entryOf(const StoredFavorite& favorite) {
  const auto index = std::ranges::find(lines_.indexes, favorite.feed, &LineIndex::feedName);
  const auto route = index == lines_.indexes.end() ? std::nullopt : (*index)->routeWithId(favorite.subject);
  if (route) return entryOf(FoundLine{*index, *route});
  return {favorite, texts()("UnknownLine", {favorite.subject}), QString::fromStdString(favorite.feed),
          nullptr};
}

/// Remembers the favourites that are no longer there.
void FavoritesWindow::setFavorites(std::vector<StoredFavorite> favorites) {
  const std::vector<StoredFavorite> before = std::exchange(favorites_, std::move(favorites));
  for (const StoredFavorite& favorite : before) {
    if (favoriteFor(favorite)) continue;
    std::erase_if(removed_, [&](const StoredFavorite& other) { return other.isSameAs(favorite); });
    removed_.push_back(favorite);
  }
}

const StoredFavorite* FavoritesWindow::favoriteFor(const StoredFavorite& line) const {
  return findSame(favorites_, line);
}

FavoriteList::Mark FavoritesWindow::markOf(const StoredFavorite& line) const {
  const StoredFavorite* const favorite = favoriteFor(line);
  return favorite ? FavoriteList::Mark{true, choiceInWords(favorite->choice, texts())} : FavoriteList::Mark{};
}

void FavoritesWindow::addLine(const FavoriteList::Entry& entry) { list_->add(entry, markOf(entry.favorite)); }

// ---- Changes ----

bool FavoritesWindow::change(const StoredFavorite& line, bool isAdded) {
  const StoredFavorite* const known = findSame(removed_, line);
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
  showMarks();
  services_.didChange();
  return true;
}

void FavoritesWindow::showMenu(const StoredFavorite& line, const QPoint& place) {
  const StoredFavorite* const favorite = favoriteFor(line);
  if (!favorite) return;
  auto* const menu = new LineChoiceMenu(
      favorite->choice, texts(),
      [this, favorite = *favorite](const LineChoice& choice) { choose(favorite, choice); }, this);
  menu->popup(place);
}

void FavoritesWindow::choose(StoredFavorite favorite, const LineChoice& choice) {
  favorite.choice = choice;
  const auto changed = services_.choose(favorite);
  if (!changed) return showError(changed.error());
  for (StoredFavorite& other : favorites_) {
    if (other.isSameAs(favorite)) other.choice = choice;
  }
  showMarks();
  if (*changed) services_.didChange();
}

/// In the search field, Enter and Down lead to the list.
bool FavoritesWindow::eventFilter(QObject* watched, QEvent* event) {
  const bool isKey = watched == search_ && event->type() == QEvent::KeyPress && list_->count() > 0;
  const int key = isKey ? static_cast<const QKeyEvent*>(event)->key() : 0;
  if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Down)
    return CompanionWindow::eventFilter(watched, event);
  goToList();
  return true;
}

void FavoritesWindow::goToList() {
  if (!list_->currentItem()) list_->setCurrentRow(0);
  list_->setFocus(Qt::TabFocusReason);
}

/// Esc clears a search before it closes the window.
void FavoritesWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape || search_->text().isEmpty())
    return CompanionWindow::keyPressEvent(event);
  search_->clear();
  search_->setFocus(Qt::OtherFocusReason);
}

}  // namespace linewatch::desktop
