#include "desktop/window/favorites_window.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "desktop/window/line_delegate.h"
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

/// A search field with a rounded outline on the card's background. A style sheet would not follow changes of
/// the palette.
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
  list_ = new QListWidget;
  list_->setFrameShape(QFrame::NoFrame);
  list_->setMouseTracking(true);
  list_->setSelectionMode(QAbstractItemView::NoSelection);
  list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  list_->setUniformItemSizes(true);
  list_->setItemDelegate(new LineDelegate(artworkCache(), artworkStep(kListedShieldStep),
                                          font(kLineNameSize, QFont::Medium), font(kAgencySize), list_));
  list_->installEventFilter(this);
  list_->setAccessibleName(this->texts()("FavoritesTitle"));
  connect(list_, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) { itemDidChange(item); });
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
  favorites_ = stored ? *stored : std::vector<StoredFavorite>();
  favoritesError_ = stored ? std::nullopt : std::optional(stored.error());
  showTitle();
  const QSignalBlocker blocker(search_);
  search_->clear();
  search_->setEnabled(stored && services_.change);
  areLinesLoaded_ = false;
  showLines();
  bringUp();
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

/// Favourites that cannot be read now are assumed to be unchanged.
void FavoritesWindow::followChanges() {
  auto stored = services_.favorites();
  if (!stored) {
    if (favoritesError_) showError(favoritesError_.emplace(stored.error()));
    return;
  }
  favorites_ = std::move(*stored);
  if (std::exchange(favoritesError_, std::nullopt)) {
    retry_->stop();
    search_->setEnabled(static_cast<bool>(services_.change));
    search_->setFocus(Qt::OtherFocusReason);
    showTitle();
    showLines();
  } else {
    showChoice();
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

// ---- What is listed ----

void FavoritesWindow::showLines() {
  const QSignalBlocker blocker(list_);
  list_->clear();
  listed_.clear();
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
  // This says more about missing lines than any other hint.
  if (lines_.error) showError(*lines_.error);
}

/// Keeps the current line and the scroll position.
void FavoritesWindow::showLinesAgain() {
  const int row = list_->currentRow();
  const auto current = row < 0 ? std::nullopt : std::optional(listed_[static_cast<std::size_t>(row)]);
  const int scrolled = list_->verticalScrollBar()->value();
  showLines();
  const auto found = current ? std::ranges::find(listed_, *current) : listed_.end();
  if (found != listed_.end()) list_->setCurrentRow(static_cast<int>(found - listed_.begin()));
  list_->verticalScrollBar()->setValue(scrolled);
}

/// Updates the check marks. A listed line that is no longer a favourite stays in the list, as if the user had
/// removed it here.
void FavoritesWindow::showChoice() {
  const QSignalBlocker blocker(list_);
  for (std::size_t row = 0; row < listed_.size(); ++row)
    list_->item(static_cast<int>(row))->setCheckState(isFavorite(listed_[row]) ? Qt::Checked : Qt::Unchecked);
  if (!listsFavorites_) return;
  for (const StoredFavorite& favorite : favorites_) {
    if (std::ranges::find(listed_, favorite) == listed_.end()) addEntry(entryOf(favorite));
  }
}

void FavoritesWindow::showFound(const std::vector<FoundLine>& found) {
  for (const FoundLine& line : std::span(found).first(std::min(found.size(), kMostLines)))
    addEntry(entryOf(line));
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
  for (const StoredFavorite& favorite : favorites_) addEntry(entryOf(favorite));
  if (!services_.change) showHint(texts()("FavoritesGiven"));
}

void FavoritesWindow::showHint(const QString& hint) {
  hint_->setText(hint);
  hint_->setVisible(!hint.isEmpty());
}

void FavoritesWindow::showError(const Error& error) { showHint(QString::fromStdString(sentenceOf(error))); }

FavoritesWindow::Entry FavoritesWindow::entryOf(const FoundLine& line) {
  LineRecords& records = records_.try_emplace(line.index.get(), line.index).first->second;
  return {favoriteOf(line), QString::fromStdString(line.longName()),
          QString::fromStdString(line.agencyName()), records.lineFieldsOfRoute(line.route)->artwork};
}

FavoritesWindow::Entry FavoritesWindow::entryOf(const StoredFavorite& favorite) {
  const auto index = std::ranges::find(lines_.indexes, favorite.feed, &LineIndex::feedName);
  const auto route = index == lines_.indexes.end() ? std::nullopt : (*index)->routeWithId(favorite.subject);
  if (route) return entryOf(FoundLine{*index, *route});
  return {favorite, texts()("UnknownLine", {favorite.subject}), QString::fromStdString(favorite.feed),
          nullptr};
}

bool FavoritesWindow::isFavorite(const StoredFavorite& line) const {
  return std::ranges::find(favorites_, line) != favorites_.end();
}

void FavoritesWindow::addEntry(const Entry& entry) {
  auto* const item = new QListWidgetItem(entry.name, list_);
  item->setData(LineDelegate::kAgencyRole, entry.agency);
  item->setData(LineDelegate::kArtworkRole, QVariant::fromValue(entry.artwork));
  const auto& shield = entry.artwork ? entry.artwork->shieldDataSource : std::nullopt;
  const QString shieldText = shield ? QString::fromStdString(shield->shieldText.value_or("")) : QString();
  QStringList words{shieldText, entry.name, entry.agency};
  words.removeAll(QString());
  item->setData(Qt::AccessibleTextRole, words.join(QStringLiteral(", ")));
  item->setCheckState(isFavorite(entry.favorite) ? Qt::Checked : Qt::Unchecked);
  item->setFlags(services_.change ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable
                                  : Qt::ItemIsEnabled | Qt::ItemIsSelectable);
  listed_.push_back(entry.favorite);
}

// ---- Changes ----

void FavoritesWindow::itemDidChange(QListWidgetItem* item) {
  const StoredFavorite& favorite = listed_[static_cast<std::size_t>(list_->row(item))];
  const bool isAdded = item->checkState() == Qt::Checked;
  const auto changed = services_.change(favorite, isAdded);
  if (!changed) {
    const QSignalBlocker blocker(list_);
    item->setCheckState(isAdded ? Qt::Unchecked : Qt::Checked);
    return showError(changed.error());
  }
  if (!*changed) return;
  std::erase(favorites_, favorite);
  if (isAdded) favorites_.push_back(favorite);
  services_.didChange();
}

/// Enter and Down, which the search field and the list do not handle themselves.
bool FavoritesWindow::eventFilter(QObject* watched, QEvent* event) {
  const bool isKey = event->type() == QEvent::KeyPress && list_->count() > 0;
  const int key = isKey ? static_cast<const QKeyEvent*>(event)->key() : 0;
  const bool isEnter = key == Qt::Key_Return || key == Qt::Key_Enter;
  if (watched == search_ && (isEnter || key == Qt::Key_Down)) {
    goToList();
    return true;
  }
  if (watched == list_ && isEnter) {
    changeCurrentLine();
    return true;
  }
  return CompanionWindow::eventFilter(watched, event);
}

void FavoritesWindow::goToList() {
  if (!list_->currentItem()) list_->setCurrentRow(0);
  list_->setFocus(Qt::TabFocusReason);
}

void FavoritesWindow::changeCurrentLine() {
  QListWidgetItem* const item = list_->currentItem();
  if (!item || !(item->flags() & Qt::ItemIsUserCheckable)) return;
  item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
}

/// Esc clears a search before it closes the window.
void FavoritesWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape || search_->text().isEmpty())
    return CompanionWindow::keyPressEvent(event);
  search_->clear();
  search_->setFocus(Qt::OtherFocusReason);
}

}  // namespace linewatch::desktop
