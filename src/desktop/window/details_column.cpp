#include "desktop/window/details_column.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "desktop/window/column_accessibility.h"
#include "desktop/window/widget_role.h"

namespace linewatch::desktop {

namespace {

// Milliseconds. With the widget that is begun last, and with painting, a turn of the event loop takes up
// to 25.
constexpr qint64 kSlice = 6;
// Points above and below the visible range in which widgets exist.
constexpr int kLeastOverscan = 300;
constexpr int kScrollStep = 24;

}  // namespace

DetailsColumn::DetailsColumn(int margin) : margin_(margin) {
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::StrongFocus);
  verticalScrollBar()->setSingleStep(kScrollStep);
  setAccessibleRole(*this, QAccessible::Grouping);
  installColumnAccessibility();
  later_.setSingleShot(true);
  connect(&later_, &QTimer::timeout, this, [this] { layOut(); });
}

void DetailsColumn::clear() {
  for (const auto& [index, widget] : widgets_) delete widget;
  widgets_.clear();
  slots_.clear();
  revealed_.reset();
  verticalScrollBar()->setRange(0, 0);
}

std::size_t DetailsColumn::add(ColumnPart part) {
  Slot slot;
  slot.height = part.estimatedHeight;
  slot.isEmpty = part.estimatedHeight == 0;
  slot.part = std::move(part);
  slot.top = slots_.empty() ? margin_ : slots_.back().top + slots_.back().extent();
  slots_.push_back(std::move(slot));
  scheduleLayout();
  return slots_.size() - 1;
}

void DetailsColumn::remake(std::size_t index, int estimatedHeight) {
  Slot& slot = slots_[index];
  slot.measuredWidth = 0;
  slot.height = slot.part.estimatedHeight = estimatedHeight;
  slot.isEmpty = estimatedHeight == 0;
  if (const auto made = widgets_.find(index); made != widgets_.end()) {
    // The widget may be the sender of the event that is being handled.
    if (made->second != nullptr) {
      made->second->hide();
      made->second->deleteLater();
    }
    widgets_.erase(made);
  }
  scheduleLayout();
}

void DetailsColumn::scheduleLayout() {
  if (!later_.isActive()) later_.start(0);
}

// ---- Layout ----

void DetailsColumn::layOut() {
  slice_.start();
  const Anchor fixed = revealed_.value_or(anchor());
  const bool isComplete = makeWidgetsNear(fixed);
  place(fixed);
  if (isComplete) {
    revealed_.reset();
    later_.stop();
    announceParts(*this);
  } else {
    later_.start(0);
  }
  if (heightDidChange_) heightDidChange_();
}

std::vector<QWidget*> DetailsColumn::shownWidgets() const {
  std::vector<QWidget*> shown;
  for (const auto& [index, widget] : widgets_) {
    if (widget != nullptr) shown.push_back(widget);
  }
  return shown;
}

bool DetailsColumn::isSliceOver() const { return slice_.elapsed() >= kSlice; }

/// The scroll bar takes its room from the margin, not from the content. Otherwise the text would wrap
/// differently with the bar, and could need the bar only when it is there.
int DetailsColumn::contentWidth() const { return std::max(1, width() - 2 * margin_); }

int DetailsColumn::contentHeight() const {
  int height = 2 * margin_;
  for (const Slot& slot : slots_) height += slot.extent();
  return height;
}

void DetailsColumn::updateTops() {
  int top = margin_;
  for (Slot& slot : slots_) {
    slot.top = top;
    top += slot.extent();
  }
}

DetailsColumn::Anchor DetailsColumn::anchor() const {
  const QScrollBar& bar = *verticalScrollBar();
  const auto below = std::ranges::upper_bound(slots_, bar.value(), {}, &Slot::top);
  const std::size_t index =
      below == slots_.begin() ? 0 : static_cast<std::size_t>(below - slots_.begin()) - 1;
  const int top = slots_.empty() ? 0 : slots_[index].top;
  return {index, bar.value() - top, bar.value() > 0 && bar.value() == bar.maximum()};
}

bool DetailsColumn::makeWidgetsNear(const Anchor& anchor) {
  const int overscan = std::max(kLeastOverscan, viewport()->height());
  std::size_t last = anchor.index;
  int room = viewport()->height() + anchor.offset + overscan;
  for (; last < slots_.size() && room > 0; ++last) {
    if (isSliceOver()) return false;
    ensureWidget(last);
    room -= slots_[last].extent();
  }
  std::size_t first = anchor.index;
  // At the end the parts above fill the visible range.
  room = overscan - anchor.offset + (anchor.isAtEnd ? viewport()->height() : 0);
  for (; first > 0 && room > 0; --first) {
    if (isSliceOver()) return false;
    ensureWidget(first - 1);
    room -= slots_[first - 1].extent();
  }
  dropOutside(first, last);
  return true;
}

void DetailsColumn::ensureWidget(std::size_t index) {
  Slot& slot = slots_[index];
  const auto [place, isNew] = widgets_.try_emplace(index, nullptr);
  if (isNew) {
    place->second = slot.part.make();
    if (place->second != nullptr) place->second->setParent(viewport());
  }
  if (!isNew && slot.measuredWidth == contentWidth()) return;
  slot.measuredWidth = contentWidth();
  slot.isEmpty = place->second == nullptr;
  if (place->second != nullptr) measure(slot, *place->second);
}

void DetailsColumn::measure(Slot& slot, QWidget& widget) const {
  widget.ensurePolished();
  const int width = contentWidth();
  slot.height = widget.hasHeightForWidth() ? widget.heightForWidth(width) : widget.sizeHint().height();
}

void DetailsColumn::dropOutside(std::size_t first, std::size_t last) {
  for (auto each = widgets_.begin(); each != widgets_.end();) {
    QWidget* const widget = each->second;
    const bool isNear = each->first >= first && each->first < last;
    // A widget with the focus stays, so that scrolling does not take the focus away.
    const bool hasFocus = widget != nullptr && (widget->hasFocus() || widget->isAncestorOf(focusWidget()));
    if (isNear || hasFocus) {
      ++each;
      continue;
    }
    delete widget;
    each = widgets_.erase(each);
  }
}

void DetailsColumn::place(const Anchor& anchor) {
  updateTops();
  isPlacing_ = true;
  QScrollBar& bar = *verticalScrollBar();
  bar.setPageStep(viewport()->height());
  bar.setRange(0, std::max(0, contentHeight() - viewport()->height()));
  const int kept = slots_.empty() ? 0 : slots_[anchor.index].top + anchor.offset;
  bar.setValue(anchor.isAtEnd ? bar.maximum() : kept);
  isPlacing_ = false;
  placeWidgets();
}

void DetailsColumn::placeWidgets() {
  const int scrolled = verticalScrollBar()->value();
  const int barWidth = width() - viewport()->width();
  const int left = isRightToLeft() ? margin_ - barWidth : margin_;
  for (const auto& [index, widget] : widgets_) {
    if (widget == nullptr) continue;
    const Slot& slot = slots_[index];
    const bool isFixed = widget->sizePolicy().horizontalPolicy() == QSizePolicy::Fixed;
    const int width = isFixed ? std::min(widget->sizeHint().width(), contentWidth()) : contentWidth();
    // A widget's own margin is outside of the column, so that its content is in line with the texts.
    const int hang = isFixed ? widget->contentsMargins().left() : 0;
    const int x = isRightToLeft() ? left + contentWidth() - width + hang : left - hang;
    widget->setGeometry(x, slot.top + slot.part.gap - scrolled, width, slot.height);
    widget->show();
  }
}

// ---- Focus ----

std::optional<std::size_t> DetailsColumn::focusedPart() const {
  const QWidget* const focused = window()->focusWidget();
  for (const auto& [index, widget] : widgets_) {
    if (widget != nullptr && (widget == focused || widget->isAncestorOf(focused))) return index;
  }
  return std::nullopt;
}

/// While the column itself has the focus, Tab starts at the visible range and Shift+Tab at the end.
std::optional<std::size_t> DetailsColumn::nextFocusPart(bool forward) const {
  const auto focused = focusedPart();
  std::size_t index = focused.value_or(forward ? anchor().index : slots_.size());
  if (forward && focused) ++index;
  if (forward) {
    while (index < slots_.size() && !slots_[index].part.takesFocus) ++index;
    return index < slots_.size() ? std::optional(index) : std::nullopt;
  }
  while (index > 0 && !slots_[index - 1].part.takesFocus) --index;
  return index > 0 ? std::optional(index - 1) : std::nullopt;
}

/// A part that was not visible comes to the bottom of the visible range, so that the text above it, which it
/// belongs to, is visible too.
QWidget* DetailsColumn::reveal(std::size_t index) {
  ensureWidget(index);
  const Slot& slot = slots_[index];
  const int top = slot.top - verticalScrollBar()->value();
  const int height = viewport()->height();
  if (top < 0 || top + slot.extent() > height)
    revealed_ = Anchor{.index = index, .offset = slot.extent() + margin_ - height};
  layOut();
  return widgets_[index];
}

/// Tab after the last part, and Shift+Tab before the first one, give the focus back to the column, which is
/// the only other widget of the window that takes it.
bool DetailsColumn::focusNextPrevChild(bool next) {
  const auto index = nextFocusPart(next);
  QWidget* const widget = index ? reveal(*index) : nullptr;
  (widget != nullptr ? widget : this)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  return true;
}

// ---- Events ----

void DetailsColumn::scrollContentsBy(int, int) {
  if (isPlacing_) return;
  revealed_.reset();
  layOut();
}

void DetailsColumn::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  if (!isPlacing_) layOut();
}

void DetailsColumn::showEvent(QShowEvent* event) {
  QAbstractScrollArea::showEvent(event);
  layOut();
}

void DetailsColumn::keyPressEvent(QKeyEvent* event) {
  QScrollBar& bar = *verticalScrollBar();
  if (event->key() == Qt::Key_Home) return bar.setValue(0);
  if (event->key() == Qt::Key_End) return bar.setValue(bar.maximum());
  QAbstractScrollArea::keyPressEvent(event);
}

}  // namespace linewatch::desktop
