#include "desktop/window/row_surface.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTouchEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/drawing/qt_canvas.h"
#include "desktop/window/focus_ring.h"
#include "desktop/window/row_accessibility.h"
#include "desktop/window/window_colors.h"

namespace linewatch::desktop {

namespace {

// Points for one notch of a mouse wheel.
constexpr double kWheelStep = 55;
constexpr double kWheelUnitsANotch = 120;
constexpr double kHoverStrength = 0.5;
constexpr double kFocusInset = 2;
constexpr double kPositionWidth = 4;
constexpr double kPositionInset = 3;
constexpr double kShortestPosition = 24;

ui::Point pointOf(const QPointF& position) { return {position.x(), position.y()}; }

double pointsOf(const QWheelEvent& event) {
  if (!event.pixelDelta().isNull()) return -event.pixelDelta().y();
  return -event.angleDelta().y() / kWheelUnitsANotch * kWheelStep;
}

}  // namespace

RowSurface::RowSurface(std::shared_ptr<ui::View> root, std::shared_ptr<ui::TableView> table,
                       Describe describe, QWidget* parent)
    : QWidget(parent),
      root_(std::move(root)),
      table_(std::move(table)),
      describe_(std::move(describe)),
      touch_({.began = [this](const QPointF& position) { pressBegan(position); },
              .tapped = [this](const QPointF& position) { pressEnded(position); },
              .cancelled = [this] { cancelPress(); },
              .scrolled = [this](double points) { scrollBy(points); }}) {
  installRowAccessibility();
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_AcceptTouchEvents);
  root_->setInvalidationHandler([this] {
    if (!isPainting_) update();
  });
  table_->setReloadHandler([this](std::size_t, ui::RowAnimation) { rowsDidReload(); });
}

RowSurface::~RowSurface() {
  root_->setInvalidationHandler(nullptr);
  table_->setReloadHandler(nullptr);
}

// ---- Rows ----

std::size_t RowSurface::rowCount() const { return table_->numberOfRowsInSection(0); }

QRect RowSurface::rectOf(std::size_t row) const {
  const ui::Rect rect = table_->rectForRow({0, row});
  return QRectF(rect.x, rect.y - table_->contentOffset(), rect.width, rect.height).toRect();
}

std::optional<std::size_t> RowSurface::rowAt(const QPoint& point) const {
  if (!rect().contains(point)) return std::nullopt;
  const auto path = table_->indexPathForRowAtPoint({double(point.x()), point.y() + table_->contentOffset()});
  return path ? std::optional(path->row) : std::nullopt;
}

std::optional<std::size_t> RowSurface::currentRow() const {
  const std::size_t rows = rowCount();
  return rows == 0 ? std::nullopt : std::optional(std::min(currentRow_, rows - 1));
}

void RowSurface::makeCurrent(std::size_t row) {
  currentRow_ = row;
  currentWords_ = describe_(row);
}

void RowSurface::setCurrentRow(std::size_t row) {
  if (row >= rowCount()) return;
  makeCurrent(row);
  scrollToRow(row);
  update();
  announceFocus(*this);
}

void RowSurface::pressRow(std::size_t row) { table_->tapRow({0, row}); }

/// Rows that have never been visible have estimated heights, so several steps may be necessary.
void RowSurface::scrollToRow(std::size_t row) {
  for (std::size_t i = 0; i <= rowCount(); ++i) {
    layOut();
    const ui::Rect rect = table_->rectForRow({0, row});
    const double offset = table_->contentOffset();
    if (rect.y < offset) table_->setContentOffset(rect.y);
    if (rect.maxY() > offset + height()) table_->setContentOffset(rect.maxY() - height());
    if (table_->contentOffset() == offset) return;
  }
}

std::size_t RowSurface::visibleRowCount() const {
  const auto row = currentRow();
  const double rowHeight = row ? table_->rectForRow({0, *row}).height : 0;
  return rowHeight > 0 ? std::max<std::size_t>(1, static_cast<std::size_t>(height() / rowHeight)) : 1;
}

void RowSurface::rowsDidReload() {
  announceRows(*this);
  const auto row = currentRow();
  const RowWords words = row ? describe_(*row) : RowWords{};
  if (std::exchange(currentWords_, words) != words) announceWords(*this);
  update();
}

// ---- Drawing ----

void RowSurface::setCornerRadius(double radius) {
  cornerRadius_ = radius;
  update();
}

void RowSurface::layOut() {
  root_->setDisplayScale(devicePixelRatioF());
  root_->setFrame({0, 0, double(width()), double(height())});
  root_->layoutIfNeeded();
}

void RowSurface::resizeEvent(QResizeEvent*) { update(); }

void RowSurface::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) update();
  QWidget::changeEvent(event);
}

void RowSurface::paintEvent(QPaintEvent*) {
  isPainting_ = true;
  layOut();
  findHoveredRow();
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath outline;
  // The upper corners of this rectangle are above the surface, so that only the lower ones are rounded.
  outline.addRoundedRect(QRectF(rect()).adjusted(0, -2 * cornerRadius_, 0, 0), cornerRadius_, cornerRadius_);
  painter.setClipPath(outline);
  if (hoveredRow_) paintFill(painter, *hoveredRow_);
  painter.save();
  QtCanvas canvas(painter, appearanceOf(palette()), devicePixelRatioF());
  root_->render(canvas);
  painter.restore();
  if (hasFocus() && focusIsShown_) paintFocus(painter);
  if (mouse_ || table_->contentOffset() > 0) paintPosition(painter);
  isPainting_ = false;
}

void RowSurface::paintFill(QPainter& painter, std::size_t row) const {
  QColor color = qtColor(ui::SemanticColor::highlightedBackground, appearanceOf(palette()));
  color.setAlphaF(color.alphaF() * static_cast<float>(kHoverStrength));
  painter.fillRect(rectOf(row), color);
}

void RowSurface::paintFocus(QPainter& painter) const {
  const auto row = currentRow();
  if (!row) return;
  const QRectF inside = QRectF(rectOf(*row)).adjusted(kFocusInset, kFocusInset, -kFocusInset, -kFocusInset);
  paintFocusRing(painter, inside, cardPalette(palette()));
}

/// Draws a scroll indicator, unless all rows are visible.
void RowSurface::paintPosition(QPainter& painter) const {
  const double content = table_->contentHeight();
  // The surface's height is rounded to whole points, so a difference of less than a point is no reason to
  // scroll.
  if (content < height() + 1) return;
  const double room = height() - cornerRadius_ - kPositionInset;
  const double length = std::max(kShortestPosition, room * height() / content);
  const double y = kPositionInset + (room - length) * table_->contentOffset() / (content - height());
  const double x = isRightToLeft() ? kPositionInset : width() - kPositionInset - kPositionWidth;
  painter.setPen(Qt::NoPen);
  painter.setBrush(qtColor(ui::SemanticColor::systemGray, appearanceOf(palette())));
  painter.drawRoundedRect(QRectF(x, y, kPositionWidth, length), kPositionWidth / 2, kPositionWidth / 2);
}

// ---- Mouse ----

void RowSurface::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  pressBegan(event->position());
}

/// The pressed row becomes the current row.
void RowSurface::pressBegan(const QPointF& position) {
  focusIsShown_ = false;
  if (const auto row = rowAt(position.toPoint())) makeCurrent(*row);
  pointer_.handle(*root_, ui::PointerPhase::pressed, pointOf(position));
  update();
}

void RowSurface::mouseMoveEvent(QMouseEvent* event) {
  mouseDidMove(event->position().toPoint());
  if (event->buttons() & Qt::LeftButton)
    pointer_.handle(*root_, ui::PointerPhase::moved, pointOf(event->position()));
}

void RowSurface::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  pressEnded(event->position());
}

void RowSurface::pressEnded(const QPointF& position) {
  pointer_.handle(*root_, ui::PointerPhase::released, pointOf(position));
}

void RowSurface::leaveEvent(QEvent*) { mouseDidMove(std::nullopt); }

void RowSurface::mouseDidMove(std::optional<QPoint> place) {
  const bool wasHere = mouse_.has_value();
  mouse_ = place;
  const auto before = hoveredRow_;
  findHoveredRow();
  if (hoveredRow_ != before || mouse_.has_value() != wasHere) update();
}

/// Also called for painting, because rows change and scroll under a resting mouse.
void RowSurface::findHoveredRow() {
  const auto row = mouse_ ? rowAt(*mouse_) : std::nullopt;
  const auto hovered = row && opens(*row) ? row : std::nullopt;
  if (hovered.has_value() != hoveredRow_.has_value())
    setCursor(hovered ? Qt::PointingHandCursor : Qt::ArrowCursor);
  hoveredRow_ = hovered;
}

void RowSurface::cancelPress() { pointer_.handle(*root_, ui::PointerPhase::cancelled, {-1, -1}); }

void RowSurface::wheelEvent(QWheelEvent* event) {
  if (!scrollBy(pointsOf(*event))) return event->ignore();
  mouseDidMove(event->position().toPoint());
}

bool RowSurface::scrollBy(double points) {
  const ui::Point middle{width() / 2.0, height() / 2.0};
  return ui::PointerTracker::scroll(*root_, middle, points);
}

// ---- Touch ----

bool RowSurface::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
      event->accept();
      touch_.handle(*static_cast<QTouchEvent*>(event), *this);
      return true;
    default:
      return QWidget::event(event);
  }
}

// ---- Keys ----

std::optional<std::size_t> RowSurface::rowForKey(int key) const {
  const auto row = currentRow();
  if (!row) return std::nullopt;
  const std::size_t last = rowCount() - 1;
  const auto up = [&](std::size_t rows) { return *row - std::min(*row, rows); };
  const auto down = [&](std::size_t rows) { return std::min(last, *row + rows); };
  switch (key) {
    case Qt::Key_Up:
      return up(1);
    case Qt::Key_Down:
      return down(1);
    case Qt::Key_PageUp:
      return up(visibleRowCount());
    case Qt::Key_PageDown:
      return down(visibleRowCount());
    case Qt::Key_Home:
      return 0;
    case Qt::Key_End:
      return last;
    default:
      return std::nullopt;
  }
}

void RowSurface::keyPressEvent(QKeyEvent* event) {
  if (event->modifiers() & ~Qt::KeypadModifier) return event->ignore();
  if (const auto row = rowForKey(event->key())) {
    focusIsShown_ = true;
    return setCurrentRow(*row);
  }
  const bool presses = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                       event->key() == Qt::Key_Space || event->key() == Qt::Key_Select;
  if (!presses) return event->ignore();
  focusIsShown_ = true;
  if (const auto row = currentRow(); row && !event->isAutoRepeat()) pressRow(*row);
  update();
}

void RowSurface::focusInEvent(QFocusEvent* event) {
  const Qt::FocusReason reason = event->reason();
  if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason)
    focusIsShown_ = true;
  announceFocus(*this);
  update();
}

void RowSurface::focusOutEvent(QFocusEvent*) {
  cancelPress();
  update();
}

}  // namespace linewatch::desktop
