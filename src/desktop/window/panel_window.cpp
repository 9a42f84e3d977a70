#include "desktop/window/panel_window.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QVariantAnimation>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/drawing/compact_size.h"
#include "desktop/drawing/qt_canvas.h"
#include "desktop/drawing/typefaces.h"
#include "desktop/window/panel_preferences.h"
#include "desktop/window/plain_tool_tip.h"
#include "desktop/window/row_words.h"
#include "desktop/window/widget_role.h"
#include "desktop/window/window_colors.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "shared/failure.h"
#include "ui/interface_settings.h"
#include "ui/notification_center.h"
#include "widget/transit_incidents_view_controller.h"

namespace linewatch::desktop {

namespace {

// Points.
// The card's width at the default text size.
constexpr int kLeastWidth = 260;
constexpr int kMostWidth = 620;
constexpr int kPlaceholderMargin = 16;
constexpr double kPlaceholderSize = 13;
// Room for a title bar and the edges beside it: the screen's available geometry includes them.
constexpr int kTitleBarAllowance = 48;
constexpr int kEdgesAllowance = 16;
// A saved place counts only if this much of the header would be on a screen.
constexpr int kVisibleHeader = 40;

constexpr int kResizeMilliseconds = 220;
constexpr int kAgingMilliseconds = 60'000;
constexpr int kSavingMilliseconds = 1000;
// A window manager may report a width late that the program has asked for.
constexpr int kSettlingMilliseconds = 1000;

ui::TextSizeCategory textSizeNow() { return platform().interfaceSettings().textSizeCategory(); }

/// How much wider the card is than at the default text size, so that as many words fit into a line.
double widthGrowth(ui::TextSizeCategory textSize) {
  return std::max(1.0, ui::scaleFactor(ui::TextStyle::body, textSize));
}

/// On Wayland a program neither knows nor chooses the place of its windows.
bool placesWindows() { return !QGuiApplication::platformName().startsWith(QLatin1String("wayland")); }

/// The text of a menu entry. In a right-to-left interface the text and the shortcut are isolated. Otherwise
/// English text and the parts of "Ctrl+F" would be reordered.
QString menuText(const QString& text, const QKeySequence& shortcut) {
  if (!QApplication::isRightToLeft()) return text;
  return QStringLiteral("\u2068%1\u2069\t\u2066%2\u2069")
      .arg(text, shortcut.toString(QKeySequence::NativeText));
}

}  // namespace

PanelWindow::PanelWindow(SharedWindowTexts texts, PanelServices services, PanelOptions options)
    : texts_(std::move(texts)),
      services_(std::move(services)),
      options_(options),
      designWidth_(kCompactSize.width) {
  setWindowTitle((*texts_)("Title"));
  setAccessibleRole(*this, QAccessible::Window);
  header_ = new PanelHeader(*texts_, {.toggle = [this] { setExpanded(!isExpanded()); },
                                      .tryAgain = [this] { requestUpdate(); },
                                      .addCity = services_.addCity});
  placeholder_ = makePlaceholder();
  // Otherwise the parts would have the cursor of the sides.
  header_->setCursor(Qt::ArrowCursor);
  auto* const layout = new QVBoxLayout(this);
  layout->setSpacing(0);
  layout->addWidget(header_);
  layout->addWidget(placeholder_);
  makeActions();
  announcer_ = makeAnnouncer(*this);
  resizing_ = new QVariantAnimation(this);
  resizing_->setEasingCurve(QEasingCurve::InOutCubic);
  connect(resizing_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& height) { applyRowsHeight(height.toDouble()); });
  aging_ = new QTimer(this);
  aging_->setSingleShot(true);
  aging_->setInterval(kAgingMilliseconds);
  aging_->setTimerType(Qt::VeryCoarseTimer);
  connect(aging_, &QTimer::timeout, this, [this] { showNote(); });
  saving_ = new QTimer(this);
  saving_->setSingleShot(true);
  saving_->setInterval(kSavingMilliseconds);
  connect(saving_, &QTimer::timeout, this, [this] {
    correctCorner();
    savePlace();
  });
  settling_ = new QTimer(this);
  settling_->setSingleShot(true);
  settling_->setInterval(kSettlingMilliseconds);
  connect(settling_, &QTimer::timeout, this, [this] { fittedWidths_ = {width()}; });
  placeholder_->setFixedHeight(static_cast<int>(compactHeightAt(textSizeNow())));
  setHeaderTextSize(textSizeNow());
  fitFrame();
  showPalette();
}

void PanelWindow::loadWidget() {
  restorePlace();
  setHeaderTextSize(textSizeNow());
  widget_ = std::make_unique<HostedWidget>(
      limitsNow(), services_.openURL, loadExpansion(),
      PanelUpdates::Settings{.refresh = options_.refresh, .feedStates = [this] { return feedNews().states; }},
      services_.observer);
  widget_->updates().setMetered(isMetered_);
  makeRows();
  for (QAction* const action : actions()) action->setEnabled(true);
  fitRows(/*animated=*/false);
  widget_->start({.contentDidChange =
                      [this] {
                        fitRows(/*animated=*/widget_->isShown());
                        announceNews();
                      },
                  .modeDidChange = [this] { showMode(); },
                  .fetchDidChange =
                      [this] {
                        if (!widget_->isFetching()) isUserWaiting_ = false;
                        showNote();
                      }});
  rows_->setFocus();
  showNote();
  appearOrDisappear();
}

void PanelWindow::showCard(QWidget* card) {
  delete std::exchange(placeholder_, card);
  card_ = card;
  layout()->addWidget(card);
  showPalette();
  for (QAction* const action : settingActions_) action->setEnabled(true);
  card->setCursor(Qt::ArrowCursor);
  setHeaderTextSize(textSizeNow());
  fitWidth(textSizeNow());
  fitCard();
  card->setFocus();
}

PanelWindow::~PanelWindow() {
  hide();
  // It draws the widget's view, so it is deleted before the widget.
  delete rows_;
}

void PanelWindow::requestUpdate() {
  if (!widget_) return;
  isUserWaiting_ = true;
  widget_->updates().userDidAsk();
  showNote();
}

void PanelWindow::connectionDidReturn() {
  if (widget_) widget_->updates().connectionDidReturn();
}

void PanelWindow::checkClock() {
  if (widget_) widget_->updates().checkClock();
}

void PanelWindow::setMetered(bool isMetered) {
  isMetered_ = isMetered;
  if (widget_) widget_->updates().setMetered(isMetered);
}

void PanelWindow::setRefresh(Seconds refresh) {
  options_.refresh = refresh;
  if (widget_) widget_->updates().setRefresh(refresh);
}

void PanelWindow::favoritesDidChange() {
  if (widget_) widget_->updates().favoritesDidChange();
}

// ---- The window's parts ----

/// Visible only while the widget has to wait, e.g. for another program that locks the saved data.
QWidget* PanelWindow::makePlaceholder() {
  auto* const label = new QLabel;
  label->setTextFormat(Qt::PlainText);
  label->setText((*texts_)("WaitingForSaved"));
  label->setFont(qtFont(kPlaceholderSize, QFont::Normal));
  label->setForegroundRole(kFaintRole);
  label->setAlignment(Qt::AlignCenter);
  label->setWordWrap(true);
  label->setMargin(kPlaceholderMargin);
  return label;
}

QAction* PanelWindow::addMenuAction(std::string_view text, const QList<QKeySequence>& shortcuts,
                                    std::function<void()> action) {
  auto* const entry = new QAction(menuText((*texts_)(text), shortcuts.front()), this);
  entry->setShortcuts(shortcuts);
  entry->setAutoRepeat(false);
  connect(entry, &QAction::triggered, this, std::move(action));
  addAction(entry);
  return entry;
}

void PanelWindow::makeActions() {
  addMenuAction("Update", {Qt::Key_F5, Qt::CTRL | Qt::Key_R}, [this] { requestUpdate(); });
  addMenuAction("Favorites", {Qt::CTRL | Qt::Key_F}, services_.showFavorites);
  QAction* const feeds =
      services_.showFeeds ? addMenuAction("Feeds", {Qt::CTRL | Qt::Key_E}, services_.showFeeds) : nullptr;
  if (services_.addCity) addCity_ = addMenuAction("AddCity", {Qt::CTRL | Qt::Key_N}, services_.addCity);
  const auto lists = actions().size();
  addMenuAction("LargerText", {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal},
                [this] { changeTextSize(1); });
  addMenuAction("SmallerText", {Qt::CTRL | Qt::Key_Minus}, [this] { changeTextSize(-1); });
  addMenuAction("UsualText", {Qt::CTRL | Qt::Key_0}, [this] { setTextSize(ui::kDefaultTextSizeCategory); });
  if (services_.showSettings)
    addMenuAction("Settings", {QKeySequence(Qt::CTRL | Qt::Key_Comma)}, services_.showSettings);
  settingActions_ = actions().sliced(lists);
  QAction* const save = services_.saveRecording ? addMenuAction("SaveWhatHappened", {Qt::CTRL | Qt::Key_S},
                                                                services_.saveRecording)
                                                : nullptr;
  // Most of these entries need the widget; closing and quitting do not.
  for (QAction* const action : actions()) action->setEnabled(action == feeds || action == addCity_);
  QAction* const closing = addMenuAction("Close", {Qt::CTRL | Qt::Key_W}, [this] { close(); });
  // A closed window may go on in the tray. Unlike quit(), this asks no window for its consent.
  addMenuAction("Quit", {Qt::CTRL | Qt::Key_Q}, [] { QApplication::exit(); });
  auto* const menu = new QMenu(this);
  menu->addActions(actions());
  menu->insertSeparator(actions()[lists]);
  if (save) menu->insertSeparator(save);
  menu->insertSeparator(closing);
  header_->setMenu(menu);
}

void PanelWindow::setShowsExample(bool isExample) {
  const QString title = (*texts_)("Title");
  setWindowTitle(isExample ? (*texts_)("ExampleOf", {title.toStdString()}) : title);
  if (addCity_)
    addCity_->setText(menuText((*texts_)(isExample ? "ChooseYourCity" : "AddCity"), addCity_->shortcut()));
}

void PanelWindow::makeRows() {
  rows_ = new RowSurface(controller().sharedView(), controller().tableView(), [this](std::size_t row) {
    return wordsOfItem(controller().dataSource()->_itemAtIndexPath({0, row}));
  });
  rows_->setCornerRadius(frame_.cornerRadius());
  rows_->setCursor(Qt::ArrowCursor);
  rows_->setAccessibleName((*texts_)("Rows"));
  delete std::exchange(placeholder_, nullptr);
  card_ = nullptr;
  layout()->addWidget(rows_);
}

void PanelWindow::showPalette() {
  for (QWidget* const part : {static_cast<QWidget*>(header_), placeholder_}) {
    if (part) part->setPalette(cardPalette(palette()));
  }
  update();
}

void PanelWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  frame_.paint(painter);
}

// ---- The frame ----

void PanelWindow::setFrameless(bool isFrameless) {
  frame_.setFrameless(isFrameless);
  fitFrame();
}

void PanelWindow::setStaysOnTop(bool staysOnTop) { frame_.setStaysOnTop(staysOnTop); }

void PanelWindow::fitFrame() {
  layout()->setContentsMargins(frame_.margins());
  header_->setTitleVisible(frame_.isFrameless());
  if (rows_) rows_->setCornerRadius(frame_.cornerRadius());
  fitWidth(textSizeNow());
  applyRowsHeight((rows_ ? static_cast<QWidget*>(rows_) : placeholder_)->height());
  update();
}

// ---- Appearing and disappearing ----

void PanelWindow::showEvent(QShowEvent*) {
  if (!screenRoom_) connect(windowHandle(), &QWindow::screenChanged, this, [this] { screenDidChange(); });
  screenDidChange();
  appearOrDisappear();
}

void PanelWindow::hideEvent(QHideEvent*) {
  savePlace();
  appearOrDisappear();
}

void PanelWindow::moveEvent(QMoveEvent*) {
  correctCorner();
  saving_->start();
}

void PanelWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::WindowStateChange) appearOrDisappear();
  if (event->type() == QEvent::PaletteChange && header_) showPalette();
  if (event->type() == QEvent::ActivationChange && widget_) showNote();
  QWidget::changeEvent(event);
}

void PanelWindow::appearOrDisappear() {
  if (services_.visibilityDidChange) services_.visibilityDidChange();
  if (!widget_) return;
  const bool wasShown = widget_->isShown();
  widget_->setShown(isVisible() && !isMinimized(), limitsNow());
  if (!wasShown && widget_->isShown()) fitRows(/*animated=*/false);
}

// ---- The header ----

PanelHeader::Note PanelWindow::note() const {
  if (widget_->isFetching() && isUserWaiting_) return {(*texts_)("Updating")};
  if (!widget_->showsSavedList()) return header_->hasNews() ? PanelHeader::Note() : services_.dataNote();
  if (!controller().dataSource()->listItem()) return {(*texts_)("Updating")};
  const auto date = widget_->savedListDate();
  if (!date) return {(*texts_)("ListOfUnknownAge")};
  return {(*texts_)("ListUpdated", {agoInWords(*date, *texts_, platform().mainLoop().now()).toStdString()})};
}

FeedNews PanelWindow::feedNews() const { return services_.feedNews ? services_.feedNews() : FeedNews(); }

/// The note does not change while an update runs that the user has not started. When there is news, the note
/// is empty, because the news has the ages.
void PanelWindow::showNote() {
  showNews();
  header_->setNote(note());
}

/// The details are long, with names of servers and files, so they are in the tooltip.
void PanelWindow::showNews() {
  FeedNews facts = feedNews();
  // While the saved list is shown, no feed has been read yet. Only the removed feeds are known.
  if (widget_->showsSavedList())
    facts = {.states = {}, .unknownLines = {}, .removedFeeds = std::move(facts.removedFeeds)};
  else
    facts.error = widget_->fetchError();
  const bool isError = facts.error.has_value();
  const PanelNews news = panelNews(facts, *texts_, platform().mainLoop().now());
  // A button that disappears must not keep the focus.
  if (news.text.isEmpty() && header_->remedyHasFocus()) rows_->setFocus(Qt::TabFocusReason);
  const bool addsCity = news.needsCity && services_.addCity;
  header_->setNews(news.text, news.details,
                   addsCity ? PanelHeader::Remedy::addCity : PanelHeader::Remedy::tryAgain);
  setPlainToolTip(*rows_, isError ? news.details : QString());
  fitHeader();
  announceNews();
  const bool hasAge = news.hasAge || widget_->showsSavedList();
  if (hasAge && widget_->isShown())
    aging_->start();
  else
    aging_->stop();
}

/// Announces the state of the list as its compact form says it, and what is wrong with the feeds. Waits until
/// both are known, so that it does not announce twice.
void PanelWindow::announceNews() {
  if (std::exchange(isAnnouncing_, true)) return;
  QMetaObject::invokeMethod(
      this, [this] { announceNow(); }, Qt::QueuedConnection);
}

void PanelWindow::announceNow() {
  isAnnouncing_ = false;
  const auto& list = controller().dataSource()->listItem();
  QStringList sentences;
  if (list) sentences << wordsOfItem(list->summaryItem()).name;
  if (header_->hasNews()) sentences << header_->news();
  announce(*announcer_, sentences.join(QLatin1Char('\n')));
}

void PanelWindow::setHeaderTextSize(ui::TextSizeCategory category) {
  header_->setTextSize(category);
  header_->fitTo(cardWidth());
}

/// The news needs room, which the rows lose.
void PanelWindow::fitHeader() {
  const int before = header_->height();
  header_->fitTo(cardWidth());
  if (header_->height() == before) return;
  if (widget_->isShown()) widget_->setLimits(limitsNow());
  fitRows(/*animated=*/false);
}

void PanelWindow::showMode() {
  const bool offersMore = widget_->offersMore();
  // A button that disappears must not keep the focus.
  if (!offersMore && header_->toggleHasFocus()) rows_->setFocus(Qt::TabFocusReason);
  header_->setToggle((*texts_)(isExpanded() ? "ShowLess" : "ShowMore"), isExpanded(), offersMore);
}

void PanelWindow::setExpanded(bool expanded) {
  saveExpansion(expanded);
  widget_->setExpanded(expanded);
}

// ---- Sizes ----

int PanelWindow::cardWidth() const { return width() - frame_.margins().left() - frame_.margins().right(); }

int PanelWindow::cardWidthAt(ui::TextSizeCategory textSize) const {
  return std::clamp(static_cast<int>(std::lround(designWidth_ * widthGrowth(textSize))), kLeastWidth,
                    mostCardWidthAt(textSize));
}

int PanelWindow::mostCardWidthAt(ui::TextSizeCategory textSize) const {
  const QMargins margins = frame_.margins();
  const int edges = frame_.isFrameless() ? margins.left() + margins.right() : kEdgesAllowance;
  const int most = static_cast<int>(std::lround(kMostWidth * widthGrowth(textSize)));
  return std::max(kLeastWidth, std::min(most, screen()->availableGeometry().width() - edges));
}

double PanelWindow::roomForRows() const {
  const QMargins margins = frame_.margins();
  const int edges = frame_.isFrameless() ? margins.top() + margins.bottom() : kTitleBarAllowance;
  return screen()->availableGeometry().height() - edges - header_->height();
}

PanelHost::Limits PanelWindow::limitsFor(ui::TextSizeCategory textSize, int cardWidth) const {
  const double rowHeight = compactHeightAt(textSize);
  const auto rows = static_cast<double>(options_.maxRows > 0 ? options_.maxRows : kMostRows);
  return {static_cast<double>(cardWidth), rowHeight, rowHeight * rows};
}

PanelHost::Limits PanelWindow::limitsNow() const { return limitsFor(textSizeNow(), cardWidth()); }

void PanelWindow::fitWidth(ui::TextSizeCategory textSize) {
  const int edges = width() - cardWidth();
  const int fitted = cardWidthAt(textSize) + edges;
  const int most = mostCardWidthAt(textSize) + edges;
  // A wider window shrinks to the most width at first.
  fittedWidths_.insert({width(), fitted, most});
  setMinimumWidth(kLeastWidth + edges);
  setMaximumWidth(most);
  resize(fitted, height());
  settling_->start();
}

/// Moves the window as little as is needed for all of it to be on its screen.
void PanelWindow::keepOnScreen() {
  if (!placesWindows() || !isVisible()) return;
  const QRect room = screen()->availableGeometry();
  const QRect frame(frameGeometry().topLeft(), size() + frameGeometry().size() - geometry().size());
  const QPoint corner(std::max(room.left(), std::min(frame.left(), room.right() - frame.width() + 1)),
                      std::max(room.top(), std::min(frame.top(), room.bottom() - frame.height() + 1)));
  if (corner != frame.topLeft()) move(corner);
}

void PanelWindow::screenDidChange() {
  disconnect(screenRoom_);
  screenRoom_ = connect(screen(), &QScreen::availableGeometryChanged, this, [this] { roomDidChange(); });
  roomDidChange();
}

void PanelWindow::roomDidChange() {
  if (!widget_ || !widget_->isShown()) return;
  widget_->setLimits(limitsNow());
  // The widget reads its limits again when the text size changes, and on few other occasions.
  platform().notificationCenter().post(ui::kTextSizeDidChangeNotification);
  fitRows(/*animated=*/false);
}

void PanelWindow::fitRows(bool animated) {
  const double height = widget_->preferredHeight(roomForRows());
  resizing_->stop();
  const bool stylesAnimate = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
  if (!animated || !stylesAnimate || isMotionReduced_) return applyRowsHeight(height);
  resizing_->setDuration(kResizeMilliseconds);
  resizing_->setStartValue(static_cast<double>(rows_->height()));
  resizing_->setEndValue(height);
  resizing_->start();
}

void PanelWindow::applyRowsHeight(double height) {
  QWidget* const body = rows_ ? rows_ : placeholder_;
  body->setFixedHeight(static_cast<int>(std::lround(height)));
  header_->fitTo(cardWidth());
  setFixedHeight(body->height() + header_->height() + frame_.margins().top() + frame_.margins().bottom());
}

void PanelWindow::fitCard() { applyRowsHeight(card_->heightForWidth(cardWidth())); }

void PanelWindow::resizeEvent(QResizeEvent* event) {
  if (!fittedWidths_.contains(width())) {
    fittedWidths_ = {width()};
    designWidth_ = cardWidth() / widthGrowth(textSizeNow());
    saving_->start();
  }
  if (event->size().width() == event->oldSize().width()) return;
  if (card_) fitCard();
  if (!widget_) return;
  widget_->widthDidChange(limitsNow(), rows_->height());
  applyRowsHeight(rows_->height());
}

// ---- The place on the screen ----

void PanelWindow::restorePlace() {
  const SavedPlace saved = loadPlace();
  if (saved.width) designWidth_ = *saved.width;
  fitWidth(textSizeNow());
  if (!saved.corner || !placesWindows()) return;
  const QPoint corner(saved.corner->x, saved.corner->y);
  const QRect header(corner, QSize(width(), kVisibleHeader));
  const bool isOnScreen = std::ranges::any_of(QGuiApplication::screens(), [&](const QScreen* screen) {
    const QRect visible = screen->availableGeometry() & header;
    return visible.width() >= kVisibleHeader && visible.height() == kVisibleHeader;
  });
  if (!isOnScreen) return;
  // The text may have grown while the panel was closed: the right end of the header must be on a screen, too.
  const QRect room = screen()->availableGeometry();
  const bool isCut = !QGuiApplication::screenAt(header.topRight());
  setCorner({isCut ? std::min(corner.x(), std::max(room.left(), room.right() - width() + 1)) : corner.x(),
             corner.y()});
}

void PanelWindow::setCorner(const QPoint& corner) {
  wantedCorner_ = corner;
  move(corner);
}

/// A window that is resized before Qt knows its title bar gets its content where the title bar should be.
void PanelWindow::correctCorner() {
  if (!wantedCorner_ || pos() == geometry().topLeft()) return;
  const QPoint wanted = *std::exchange(wantedCorner_, std::nullopt);
  if (geometry().topLeft() == wanted) move(wanted);
}

void PanelWindow::savePlace() {
  saving_->stop();
  if (!widget_ || isMinimized()) return;
  SavedPlace place{.width = designWidth_};
  if (placesWindows()) place.corner = SavedPlace::Corner{pos().x(), pos().y()};
  linewatch::desktop::savePlace(place);
}

// ---- Text size ----

void PanelWindow::changeTextSize(int steps) {
  const int last = static_cast<int>(ui::kTextSizeCategoryNames.size()) - 1;
  const int size = static_cast<int>(textSizeNow()) + steps;
  setTextSize(static_cast<ui::TextSizeCategory>(std::clamp(size, 0, last)));
}

void PanelWindow::setTextSize(ui::TextSizeCategory category) {
  if (category == textSizeNow()) return;
  if (!widget_) {
    services_.setTextSize(category);
    setHeaderTextSize(category);
    return keepOnScreen();
  }
  const PanelHost::Limits limits = limitsFor(category, cardWidthAt(category));
  widget_->setLimits(limits);
  services_.setTextSize(category);
  widget_->textSizeDidChange(limits);
  fitWidth(category);
  setHeaderTextSize(category);
  fitRows(/*animated=*/widget_->isShown());
  keepOnScreen();
}

// ---- Input ----

void PanelWindow::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Keyboard) return header_->popUpMenu();
  header_->menu()->popup(event->globalPos());
}

/// Some platforms send only a key event for the keys that open a menu.
void PanelWindow::keyPressEvent(QKeyEvent* event) {
  const bool opensMenu = event->key() == Qt::Key_Menu ||
                         (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier);
  if (!opensMenu) return QWidget::keyPressEvent(event);
  header_->popUpMenu();
}

void PanelWindow::mousePressEvent(QMouseEvent* event) { frame_.mousePressed(*event, header_->geometry()); }

void PanelWindow::mouseMoveEvent(QMouseEvent* event) { frame_.mouseMoved(*event); }

void PanelWindow::mouseReleaseEvent(QMouseEvent*) { frame_.mouseReleased(); }

}  // namespace linewatch::desktop
