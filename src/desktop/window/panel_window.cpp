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
#include "desktop/window/panel_header.h"
#include "desktop/window/panel_preferences.h"
#include "desktop/window/plain_tool_tip.h"
#include "desktop/window/row_words.h"
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
constexpr int kMargin = 10;
constexpr int kCardRadius = 14;
constexpr int kLeastWidth = 280;
constexpr int kMostWidth = 640;
constexpr int kPlaceholderMargin = 16;
constexpr double kPlaceholderSize = 13;
// Room for the window's frame: the screen's available geometry includes it.
constexpr int kFrameAllowance = 48;

constexpr int kResizeMilliseconds = 220;
constexpr int kAgingMilliseconds = 60'000;

ui::TextSizeCategory textSizeNow() { return platform().interfaceSettings().textSizeCategory(); }

/// The text of a menu entry. In a right-to-left interface the text and the shortcut are isolated. Otherwise
/// English text and the parts of "Ctrl+F" would be reordered.
QString menuText(const QString& text, const QKeySequence& shortcut) {
  if (!QApplication::isRightToLeft()) return text;
  return QStringLiteral("\u2068%1\u2069\t\u2066%2\u2069")
      .arg(text, shortcut.toString(QKeySequence::NativeText));
}

}  // namespace

PanelWindow::PanelWindow(SharedWindowTexts texts, PanelServices services, PanelOptions options)
    : texts_(std::move(texts)), services_(std::move(services)), options_(options) {
  setWindowTitle((*texts_)("Title"));
  resize(static_cast<int>(kCompactSize.width) + 2 * kMargin, height());
  setMinimumWidth(kLeastWidth);
  setMaximumWidth(kMostWidth);
  header_ = new PanelHeader(
      *texts_, {.toggle = [this] { setExpanded(!isExpanded()); }, .tryAgain = [this] { requestUpdate(); }});
  placeholder_ = makePlaceholder();
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  layout->setSpacing(0);
  layout->addWidget(header_);
  layout->addWidget(placeholder_);
  makeActions();
  resizing_ = new QVariantAnimation(this);
  resizing_->setEasingCurve(QEasingCurve::InOutCubic);
  connect(resizing_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& height) { applyRowsHeight(height.toDouble()); });
  aging_ = new QTimer(this);
  aging_->setSingleShot(true);
  aging_->setInterval(kAgingMilliseconds);
  aging_->setTimerType(Qt::VeryCoarseTimer);
  connect(aging_, &QTimer::timeout, this, [this] { showNote(); });
  setHeaderTextSize(textSizeNow());
  applyRowsHeight(compactHeightAt(textSizeNow()));
  showPalette();
}

void PanelWindow::loadWidget() {
  if (const auto textSize = loadTextSize()) services_.setTextSize(*textSize);
  setHeaderTextSize(textSizeNow());
  widget_ = std::make_unique<HostedWidget>(
      limitsFor(textSizeNow()), services_.openURL, loadExpansion(),
      PanelUpdates::Settings{.refresh = options_.refresh, .feedStates = [this] { return feedNews().states; }},
      services_.observer);
  widget_->updates().setMetered(isMetered_);
  makeRows();
  for (QAction* const action : actions()) action->setEnabled(true);
  fitRows(/*animated=*/false);
  widget_->start({.contentDidChange = [this] { fitRows(/*animated=*/widget_->isShown()); },
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
  layout()->addWidget(card);
  showPalette();
  applyRowsHeight(card->heightForWidth(width() - 2 * kMargin));
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
  addMenuAction("LargerText", {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal},
                [this] { changeTextSize(1); });
  addMenuAction("SmallerText", {Qt::CTRL | Qt::Key_Minus}, [this] { changeTextSize(-1); });
  addMenuAction("UsualText", {Qt::CTRL | Qt::Key_0}, [this] { setTextSize(ui::kDefaultTextSizeCategory); });
  QAction* const save = services_.saveRecording ? addMenuAction("SaveWhatHappened", {Qt::CTRL | Qt::Key_S},
                                                                services_.saveRecording)
                                                : nullptr;
  // Most of these entries need the widget; closing the window does not.
  for (QAction* const action : actions()) action->setEnabled(action == feeds);
  addMenuAction("Close", {Qt::CTRL | Qt::Key_W, Qt::CTRL | Qt::Key_Q}, [this] { close(); });
  auto* const menu = new QMenu(this);
  menu->addActions(actions());
  menu->insertSeparator(actions()[feeds ? 3 : 2]);
  if (save) menu->insertSeparator(save);
  menu->insertSeparator(actions().back());
  header_->setMenu(menu);
}

void PanelWindow::makeRows() {
  rows_ = new RowSurface(controller().sharedView(), controller().tableView(), [this](std::size_t row) {
    return wordsOfItem(controller().dataSource()->_itemAtIndexPath({0, row}));
  });
  rows_->setCornerRadius(kCardRadius);
  rows_->setAccessibleName((*texts_)("Rows"));
  delete std::exchange(placeholder_, nullptr);
  layout()->addWidget(rows_);
}

void PanelWindow::showPalette() {
  for (QWidget* const part : {static_cast<QWidget*>(header_), placeholder_}) {
    if (part) part->setPalette(cardPalette(palette()));
  }
  update();
}

void PanelWindow::paintEvent(QPaintEvent*) {
  const ui::Appearance appearance = appearanceOf(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(qtColor(ui::SemanticColor::separator, appearance), 1));
  painter.setBrush(qtColor(ui::SemanticColor::background, appearance));
  const QRectF card = QRectF(rect()).adjusted(kMargin, kMargin, -kMargin, -kMargin);
  painter.drawRoundedRect(card.adjusted(-0.5, -0.5, 0.5, 0.5), kCardRadius, kCardRadius);
}

// ---- Appearing and disappearing ----

void PanelWindow::showEvent(QShowEvent*) {
  if (!screenRoom_) connect(windowHandle(), &QWindow::screenChanged, this, [this] { screenDidChange(); });
  screenDidChange();
  appearOrDisappear();
}

void PanelWindow::hideEvent(QHideEvent*) { appearOrDisappear(); }

void PanelWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::WindowStateChange) appearOrDisappear();
  if (event->type() == QEvent::PaletteChange && header_) showPalette();
  if (event->type() == QEvent::ActivationChange && widget_) showNote();
  QWidget::changeEvent(event);
}

void PanelWindow::appearOrDisappear() {
  if (!widget_) return;
  const bool wasShown = widget_->isShown();
  widget_->setShown(isVisible() && !isMinimized(), limitsFor(textSizeNow()));
  if (!wasShown && widget_->isShown()) fitRows(/*animated=*/false);
}

// ---- The header ----

QString PanelWindow::noteText() const {
  if (widget_->isFetching() && isUserWaiting_) return (*texts_)("Updating");
  if (!widget_->showsSavedList()) return header_->hasNews() ? QString() : services_.dataNote();
  if (!controller().dataSource()->listItem()) return (*texts_)("Updating");
  const auto date = widget_->savedListDate();
  if (!date) return (*texts_)("ListOfUnknownAge");
  return (*texts_)("ListUpdated", {agoInWords(*date, *texts_, platform().mainLoop().now()).toStdString()});
}

FeedNews PanelWindow::feedNews() const { return services_.feedNews ? services_.feedNews() : FeedNews(); }

/// The note does not change while an update runs that the user has not started. When there is news, the note
/// is empty, because the news has the ages.
void PanelWindow::showNote() {
  showNews();
  header_->setNote(noteText());
}

/// The details are long, with names of servers and files, so they are in the tooltip.
void PanelWindow::showNews() {
  PanelNews news;
  bool isError = false;
  if (!widget_->showsSavedList()) {
    FeedNews facts = feedNews();
    facts.error = widget_->fetchError();
    isError = facts.error.has_value();
    news = panelNews(facts, *texts_, platform().mainLoop().now());
  }
  // A button that disappears must not keep the focus.
  if (news.text.isEmpty() && header_->tryAgainHasFocus()) rows_->setFocus(Qt::TabFocusReason);
  header_->setNews(news.text, news.details);
  setPlainToolTip(*rows_, isError ? news.details : QString());
  fitHeader();
  const bool hasAge = news.hasAge || widget_->showsSavedList();
  if (hasAge && widget_->isShown())
    aging_->start();
  else
    aging_->stop();
}

void PanelWindow::setHeaderTextSize(ui::TextSizeCategory category) {
  header_->setTextSize(category);
  header_->fitTo(width() - 2 * kMargin);
}

/// The news needs room, which the rows lose.
void PanelWindow::fitHeader() {
  const int before = header_->height();
  header_->fitTo(width() - 2 * kMargin);
  if (header_->height() == before) return;
  if (widget_->isShown()) widget_->setLimits(limitsFor(textSizeNow()));
  fitRows(/*animated=*/false);
}

void PanelWindow::showMode() {
  const bool offersMore = widget_->offersMore();
  // A button that disappears must not keep the focus.
  if (!offersMore && header_->toggleHasFocus()) rows_->setFocus(Qt::TabFocusReason);
  header_->setToggle((*texts_)(isExpanded() ? "ShowLess" : "ShowMore"), offersMore);
}

void PanelWindow::setExpanded(bool expanded) {
  saveExpansion(expanded);
  widget_->setExpanded(expanded);
}

// ---- Sizes ----

double PanelWindow::roomForRows() const {
  return screen()->availableGeometry().height() - 2 * kMargin - header_->height() - kFrameAllowance;
}

PanelHost::Limits PanelWindow::limitsFor(ui::TextSizeCategory textSize) const {
  const double rowHeight = compactHeightAt(textSize);
  const double rows =
      options_.maxRows > 0 ? static_cast<double>(options_.maxRows) : std::floor(roomForRows() / rowHeight);
  return {static_cast<double>(width() - 2 * kMargin), rowHeight, rowHeight * std::max(1.0, rows)};
}

void PanelWindow::screenDidChange() {
  disconnect(screenRoom_);
  screenRoom_ = connect(screen(), &QScreen::availableGeometryChanged, this, [this] { roomDidChange(); });
  roomDidChange();
}

void PanelWindow::roomDidChange() {
  if (!widget_ || !widget_->isShown()) return;
  widget_->setLimits(limitsFor(textSizeNow()));
  // The widget reads its limits again when the text size changes, and on few other occasions.
  platform().notificationCenter().post(ui::kTextSizeDidChangeNotification);
  fitRows(/*animated=*/false);
}

void PanelWindow::fitRows(bool animated) {
  const double height = widget_->preferredHeight(roomForRows());
  resizing_->stop();
  const bool stylesAnimate = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
  if (!animated || !stylesAnimate) return applyRowsHeight(height);
  resizing_->setDuration(kResizeMilliseconds);
  resizing_->setStartValue(static_cast<double>(rows_->height()));
  resizing_->setEndValue(height);
  resizing_->start();
}

void PanelWindow::applyRowsHeight(double height) {
  QWidget* const body = rows_ ? rows_ : placeholder_;
  body->setFixedHeight(static_cast<int>(std::lround(height)));
  header_->fitTo(width() - 2 * kMargin);
  setFixedHeight(body->height() + header_->height() + 2 * kMargin);
}

void PanelWindow::resizeEvent(QResizeEvent* event) {
  if (!widget_ || event->size().width() == event->oldSize().width()) return;
  widget_->widthDidChange(limitsFor(textSizeNow()), rows_->height());
  applyRowsHeight(rows_->height());
}

// ---- Text size ----

void PanelWindow::changeTextSize(int steps) {
  const int last = static_cast<int>(ui::kTextSizeCategoryNames.size()) - 1;
  const int size = static_cast<int>(textSizeNow()) + steps;
  setTextSize(static_cast<ui::TextSizeCategory>(std::clamp(size, 0, last)));
}

void PanelWindow::setTextSize(ui::TextSizeCategory category) {
  if (category == textSizeNow()) return;
  saveTextSize(category);
  setHeaderTextSize(category);
  widget_->setLimits(limitsFor(category));
  services_.setTextSize(category);
  widget_->textSizeDidChange();
  fitRows(/*animated=*/widget_->isShown());
}

// ---- Input ----

void PanelWindow::contextMenuEvent(QContextMenuEvent* event) { header_->menu()->popup(event->globalPos()); }

void PanelWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
  close();
}

}  // namespace linewatch::desktop
