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
#include <QStyleOptionToolButton>
#include <QToolButton>
#include <QVariantAnimation>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/drawing/compact_size.h"
#include "desktop/drawing/qt_canvas.h"
#include "desktop/drawing/typefaces.h"
#include "desktop/window/enter_key.h"
#include "desktop/window/panel_preferences.h"
#include "desktop/window/row_words.h"
#include "desktop/window/window_colors.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "shared/failure.h"
#include "ui/interface_settings.h"
#include "ui/notification_center.h"
#include "widget/saved_ui_data.h"
#include "widget/transit_incidents_view_controller.h"
#include "widget/widget_display_mode.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kMargin = 10;
constexpr int kHeaderHeight = 40;
constexpr int kCardRadius = 14;
constexpr int kLeastWidth = 280;
constexpr int kMostWidth = 640;
constexpr int kHeaderInset = 16;
constexpr double kTitleSize = 13;
constexpr double kNoteSize = 11;
// How many times larger the header can be, for whatever size of text: the rows are what the room is for.
constexpr double kMostHeaderScale = 1.6;
constexpr int kFewLetters = 6;
// What a window's frame and a desktop's bars may take that the screen does not tell.
constexpr int kFrameAllowance = 48;

constexpr int kResizeMilliseconds = 220;

double headerScale(ui::TextSizeCategory textSize) {
  return std::clamp(ui::scaleFactor(ui::TextStyle::body, textSize), 1.0, kMostHeaderScale);
}

int headerHeight(ui::TextSizeCategory textSize) {
  return static_cast<int>(std::lround(kHeaderHeight * headerScale(textSize)));
}

ui::TextSizeCategory textSizeNow() { return platform().interfaceSettings().textSizeCategory(); }

/// What a menu shows for an action. From right to left the parts of a shortcut, and a text in a language that
/// is written from left to right, would be put in another order were they not set apart.
QString menuText(const QString& text, const QKeySequence& shortcut) {
  if (!QApplication::isRightToLeft()) return text;
  return QStringLiteral("\u2068%1\u2069\t\u2066%2\u2069")
      .arg(text, shortcut.toString(QKeySequence::NativeText));
}

/// A label that gives way to what stands beside it, and then says that there is more; nothing where a few
/// letters are all that there is room for.
class YieldingLabel final : public QLabel {
 public:
  using QLabel::QLabel;

  QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
    if (shown != text() && width() < kFewLetters * fontMetrics().averageCharWidth()) shown.clear();
    style()->drawItemText(&painter, rect(), static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter), palette(),
                          isEnabled(), shown, foregroundRole());
  }
};

/// A button with a menu, without an arrow that would say the same as its text.
class PlainMenuButton final : public QToolButton {
 protected:
  void initStyleOption(QStyleOptionToolButton* option) const override {
    QToolButton::initStyleOption(option);
    option->features &= ~QStyleOptionToolButton::HasMenu;
  }
};

}  // namespace

PanelWindow::PanelWindow(SharedWindowTexts texts, PanelServices services, std::uint64_t maxRows)
    : texts_(std::move(texts)),
      services_(std::move(services)),
      maxRows_(maxRows),
      updates_([this] { controller_->widgetPerformUpdateWithCompletionHandler(nullptr); }) {
  setWindowTitle((*texts_)("Title"));
  resize(static_cast<int>(kCompactSize.width) + 2 * kMargin, height());
  setMinimumWidth(kLeastWidth);
  setMaximumWidth(kMostWidth);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  layout->setSpacing(0);
  header_ = makeHeader();
  layout->addWidget(header_);
  placeholder_ = makePlaceholder();
  layout->addWidget(placeholder_);
  makeActions();
  resizing_ = new QVariantAnimation(this);
  resizing_->setEasingCurve(QEasingCurve::InOutCubic);
  connect(resizing_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& height) { applyRowsHeight(height.toDouble()); });
  showHeaderAt(textSizeNow());
  applyRowsHeight(compactHeightAt(textSizeNow()));
  showPalette();
}

void PanelWindow::loadWidget() {
  if (const auto textSize = keptTextSize()) services_.setTextSize(*textSize);
  makeController();
  rows_ = new RowSurface(controller_->sharedView(), controller_->tableView(),
                         [this](std::size_t row) { return wordsOf(row); });
  rows_->setCornerRadius(kCardRadius);
  rows_->setAccessibleName((*texts_)("Rows"));
  delete std::exchange(placeholder_, nullptr);
  layout()->addWidget(rows_);
  for (QAction* const action : actions()) action->setEnabled(true);
  showHeaderAt(textSizeNow());
  setRowsHeight(heightForRows(), false);
  showOffer();
  rows_->setFocus();
  appearOrDisappear();
}

PanelWindow::~PanelWindow() {
  hide();
  if (!controller_) return;
  controller_->setPreferredContentSizeHandler(nullptr);
  controller_->setRequestHandler(nullptr);
  host_->setAvailabilityHandler(nullptr);
  // Of the controller's view, so it goes first.
  delete rows_;
}

// ---- What the window is made of ----

QWidget* PanelWindow::makeHeader() {
  auto* const header = new QWidget;
  auto* const layout = new QHBoxLayout(header);
  layout->setContentsMargins(kHeaderInset, 0, kMargin, 0);
  title_ = new YieldingLabel((*texts_)("Title"));
  note_ = new YieldingLabel;
  note_->setForegroundRole(kFaintRole);
  note_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  toggle_ = new QToolButton;
  toggle_->setAutoRaise(true);
  toggle_->setFocusPolicy(Qt::StrongFocus);
  toggle_->hide();
  connect(toggle_, &QToolButton::clicked, this, [this] { setExpanded(!isExpanded()); });
  menuButton_ = new PlainMenuButton;
  menuButton_->setText(QStringLiteral("⋯"));
  menuButton_->setAutoRaise(true);
  menuButton_->setFocusPolicy(Qt::StrongFocus);
  menuButton_->setPopupMode(QToolButton::InstantPopup);
  menuButton_->setAccessibleName((*texts_)("Menu"));
  menuButton_->setToolTip((*texts_)("Menu"));
  for (QToolButton* const button : {toggle_, menuButton_}) clickOnEnter(*button);
  layout->addWidget(title_);
  layout->addWidget(note_, 1);
  layout->addWidget(toggle_);
  layout->addWidget(menuButton_);
  return header;
}

/// What a card without a widget shows. It is seen only when something keeps the widget waiting.
QWidget* PanelWindow::makePlaceholder() {
  auto* const text = new QLabel((*texts_)("WaitingForSaved"));
  text->setFont(qtFont(kTitleSize, QFont::Normal));
  text->setForegroundRole(kFaintRole);
  text->setAlignment(Qt::AlignCenter);
  text->setWordWrap(true);
  text->setMargin(kHeaderInset);
  return text;
}

void PanelWindow::showHeaderAt(ui::TextSizeCategory textSize) {
  const double scale = headerScale(textSize);
  title_->setFont(qtFont(kTitleSize * scale, QFont::DemiBold));
  note_->setFont(qtFont(kNoteSize * scale, QFont::Normal));
  toggle_->setFont(qtFont(kTitleSize * scale, QFont::Medium));
  menuButton_->setFont(qtFont(kTitleSize * scale, QFont::DemiBold));
  header_->setFixedHeight(headerHeight(textSize));
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
  addMenuAction("LargerText", {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal},
                [this] { changeTextSize(1); });
  addMenuAction("SmallerText", {Qt::CTRL | Qt::Key_Minus}, [this] { changeTextSize(-1); });
  addMenuAction("UsualText", {Qt::CTRL | Qt::Key_0}, [this] { setTextSize(ui::kDefaultTextSizeCategory); });
  // All others are about the widget.
  for (QAction* const action : actions()) action->setEnabled(false);
  addMenuAction("Close", {Qt::CTRL | Qt::Key_W, Qt::CTRL | Qt::Key_Q}, [this] { close(); });
  auto* const menu = new QMenu(this);
  menu->addActions(actions());
  menu->insertSeparator(actions()[2]);
  menu->insertSeparator(actions().back());
  menuButton_->setMenu(menu);
}

void PanelWindow::makeController() {
  host_ = std::make_shared<PanelHost>(limitsFor(textSizeNow()), services_.openURL);
  controller_ =
      RVTransitIncidentsViewController::make(host_, {host_->limits().width, host_->limits().compactHeight});
  controller_->view();
  controller_->setPreferredContentSizeHandler([this](const Size&) { contentDidChange(); });
  controller_->setRequestHandler([this] { requestDidChange(); });
  const auto& dataSource = controller_->dataSource();
  wantsExpanded_ = keptExpansion().value_or(dataSource->isExpanded());
  if (dataSource->isExpanded()) host_->setActiveDisplayMode(WidgetDisplayMode::expanded);
  host_->setLargestAvailableDisplayMode(widgetLargestAvailableDisplayMode(dataSource->listItem().get()));
  host_->setAvailabilityHandler([this] { availabilityDidChange(); });
}

RowWords PanelWindow::wordsOf(std::size_t row) const {
  return wordsOfItem(controller_->dataSource()->_itemAtIndexPath({0, row}));
}

void PanelWindow::showPalette() {
  for (QWidget* const part : {header_, placeholder_}) {
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

// ---- Coming and going ----

void PanelWindow::showEvent(QShowEvent*) {
  if (!screenRoom_) connect(windowHandle(), &QWindow::screenChanged, this, [this] { screenDidChange(); });
  screenDidChange();
  appearOrDisappear();
}

void PanelWindow::hideEvent(QHideEvent*) { appearOrDisappear(); }

void PanelWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::WindowStateChange) appearOrDisappear();
  if (event->type() == QEvent::PaletteChange && header_) showPalette();
  if (event->type() == QEvent::ActivationChange && controller_) showNote();
  QWidget::changeEvent(event);
}

void PanelWindow::appearOrDisappear() {
  const bool isShown = controller_ && isVisible() && !isMinimized();
  if (std::exchange(isShown_, isShown) == isShown) return;
  if (isShown) {
    updates_.setInSight(true);
    host_->setLimits(limitsFor(textSizeNow()));
    controller_->viewWillAppear(true);
    controller_->viewDidAppear(true);
    setRowsHeight(heightForRows(), false);
  } else {
    updates_.setInSight(false);
    controller_->viewWillDisappear(true);
    controller_->viewDidDisappear(true);
  }
}

// ---- Updates ----

/// Whoever has asked for the fetch: the widget does so by itself too.
void PanelWindow::requestDidChange() {
  if (controller_->request()) {
    updates_.fetchDidBegin();
  } else {
    if (isShown_) saveState();
    const std::optional<Error>& error = controller_->transitLineItemResult()->error();
    reportFailure(error);
    updates_.fetchDidEnd(error.has_value());
  }
  showNote();
}

/// Each reason once, however often it is tried again; once more when it comes back.
void PanelWindow::reportFailure(const std::optional<Error>& error) {
  std::string reason = error ? sentenceOf(*error) : "";
  if (reason != reportedFailure_ && error) logError("%@", {reason});
  reportedFailure_ = std::move(reason);
}

/// How old the data is says nothing beside an error, which has its reason in its place: for those who ask,
/// for it is long and speaks of servers and files.
void PanelWindow::showNote() {
  const std::optional<Error>& error = controller_->dataSource()->transitLineItemResult()->error();
  const QString reason = error ? QString::fromStdString(sentenceOf(*error)) : QString();
  QString note;
  if (controller_->request()) {
    note = (*texts_)("Updating");
  } else if (!error) {
    note = services_.dataNote();
  }
  note_->setText(note);
  note_->setToolTip(note.isEmpty() ? reason : note);
  note_->setAccessibleDescription(reason);
  rows_->setToolTip(reason);
  rows_->setAccessibleDescription(reason);
}

// ---- Modes and sizes ----

double PanelWindow::roomForRows(ui::TextSizeCategory textSize) const {
  return screen()->availableGeometry().height() - 2 * kMargin - headerHeight(textSize) - kFrameAllowance;
}

PanelHost::Limits PanelWindow::limitsFor(ui::TextSizeCategory textSize) const {
  const double rowHeight = compactHeightAt(textSize);
  const double rows =
      maxRows_ > 0 ? static_cast<double>(maxRows_) : std::floor(roomForRows(textSize) / rowHeight);
  return {static_cast<double>(width() - 2 * kMargin), rowHeight, rowHeight * std::max(1.0, rows)};
}

void PanelWindow::screenDidChange() {
  disconnect(screenRoom_);
  screenRoom_ = connect(screen(), &QScreen::availableGeometryChanged, this, [this] { roomDidChange(); });
  roomDidChange();
}

void PanelWindow::roomDidChange() {
  if (!isShown_) return;
  host_->setLimits(limitsFor(textSizeNow()));
  // The widget asks for its limits only now and then; this is such an occasion.
  platform().notificationCenter().post(ui::kTextSizeDidChangeNotification);
  setRowsHeight(heightForRows(), false);
}

bool PanelWindow::isExpanded() const { return host_->activeDisplayMode() == WidgetDisplayMode::expanded; }

void PanelWindow::setExpanded(bool expanded) {
  wantsExpanded_ = expanded;
  keepExpansion(expanded);
  showOffer();
}

/// The widget is in the middle of something when it says so.
void PanelWindow::availabilityDidChange() {
  if (std::exchange(offerIsPending_, true)) return;
  QMetaObject::invokeMethod(
      this, [this] { showOffer(); }, Qt::QueuedConnection);
}

/// What the user wants holds again as soon as the widget can do it.
void PanelWindow::showOffer() {
  offerIsPending_ = false;
  const bool offersMore = host_->largestAvailableDisplayMode() == WidgetDisplayMode::expanded;
  setMode(offersMore && wantsExpanded_ ? WidgetDisplayMode::expanded : WidgetDisplayMode::compact);
  toggle_->setText((*texts_)(isExpanded() ? "ShowLess" : "ShowMore"));
  if (!offersMore && toggle_->hasFocus()) rows_->setFocus(Qt::TabFocusReason);
  toggle_->setVisible(offersMore);
}

void PanelWindow::setMode(WidgetDisplayMode mode) {
  if (mode == host_->activeDisplayMode()) return;
  host_->setActiveDisplayMode(mode);
  controller_->widgetActiveDisplayModeDidChange(mode, host_->maximumSizeForDisplayMode(mode));
}

void PanelWindow::contentDidChange() {
  setRowsHeight(heightForRows(), isShown_);
  if (isShown_) saveState();
}

/// As high as the rows, as far as the screen has room; never less than one row. The widget names its
/// preferred size only when its list changes: not for the list that it was last closed with, nor always for
/// another text size.
double PanelWindow::heightForRows() const {
  const auto& dataSource = controller_->dataSource();
  const Size preferred = dataSource->preferredContentSizeForExpanded(
      dataSource->isExpanded(), host_->maximumSizeForDisplayMode(host_->activeDisplayMode()));
  return std::max(host_->limits().compactHeight, std::min(preferred.height, roomForRows(textSizeNow())));
}

void PanelWindow::setRowsHeight(double height, bool animated) {
  resizing_->stop();
  const bool movesAtAll = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
  if (!animated || !movesAtAll) return applyRowsHeight(height);
  resizing_->setDuration(kResizeMilliseconds);
  resizing_->setStartValue(static_cast<double>(rows_->height()));
  resizing_->setEndValue(height);
  resizing_->start();
}

void PanelWindow::applyRowsHeight(double height) {
  QWidget* const body = rows_ ? rows_ : placeholder_;
  body->setFixedHeight(static_cast<int>(std::lround(height)));
  setFixedHeight(body->height() + header_->height() + 2 * kMargin);
}

void PanelWindow::resizeEvent(QResizeEvent* event) {
  if (!controller_ || event->size().width() == event->oldSize().width()) return;
  host_->setLimits(limitsFor(textSizeNow()));
  controller_->viewWillTransitionToSize({host_->limits().width, static_cast<double>(rows_->height())});
}

/// The widget saves its state when it disappears; what ends the program from outside does not let it. The
/// list on screen is saved as soon as it has been fetched; what could not be saved is tried again after the
/// next fetch or change of the mode.
void PanelWindow::saveState() {
  const auto& dataSource = controller_->dataSource();
  const auto result = dataSource->transitLineItemResult();
  if (!controller_->transitLineItemResult()) return;
  const bool isExpanded = dataSource->isExpanded();
  if (result == savedResult_ && isExpanded == savedExpanded_) return;
  if (!saveUIData(std::make_shared<const RVTransitIncidentViewControllerState>(result, isExpanded)))
    // Why is in the log already, once.
    return logDebug("The list on screen could not be kept for the next start; the one before it stays");
  savedResult_ = result;
  savedExpanded_ = isExpanded;
  logDebug("The list on screen is kept for the next start");
}

// ---- Text size ----

void PanelWindow::changeTextSize(int steps) {
  const int last = static_cast<int>(ui::kTextSizeCategoryNames.size()) - 1;
  const int size = static_cast<int>(textSizeNow()) + steps;
  setTextSize(static_cast<ui::TextSizeCategory>(std::clamp(size, 0, last)));
}

void PanelWindow::setTextSize(ui::TextSizeCategory category) {
  if (category == textSizeNow()) return;
  keepTextSize(category);
  showHeaderAt(category);
  host_->setLimits(limitsFor(category));
  services_.setTextSize(category);
  controller_->view().environmentDidChange();
  // The widget reloads its rows only for another list, but each row has its height from when it was made.
  controller_->tableView()->reloadData();
  setRowsHeight(heightForRows(), isShown_);
}

// ---- Input ----

void PanelWindow::contextMenuEvent(QContextMenuEvent* event) {
  menuButton_->menu()->popup(event->globalPos());
}

void PanelWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
  close();
}

}  // namespace linewatch::desktop
