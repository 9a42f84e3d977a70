#include "ui/layout_engine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "platform/log.h"

namespace linewatch::ui {

namespace {

constexpr std::uint32_t kNoSlot = UINT32_MAX;
// A frame that was given wins over everything but required constraints.
constexpr LayoutPriority kFramePriority = 999.5;
// Views that name each other as their baseline's view would be followed for ever.
constexpr int kLongestBaselineChain = 32;

constexpr std::array kAxes = {Axis::horizontal, Axis::vertical};

bool isBaseline(LayoutAttribute attribute) {
  return attribute == LayoutAttribute::firstBaseline || attribute == LayoutAttribute::lastBaseline;
}

bool isShownIn(const View& root, const View& view) {
  const View* each = &view;
  while (each != nullptr && each != &root && !each->isHidden()) each = each->superview();
  return each == &root;
}

bool sameTerms(const LinearConstraint& a, const LinearConstraint& b) {
  if (a.termCount != b.termCount || a.priority != b.priority || a.relation != b.relation) return false;
  for (std::size_t i = 0; i < a.termCount; ++i) {
    if (a.terms[i].variable != b.terms[i].variable || a.terms[i].coefficient != b.terms[i].coefficient) {
      return false;
    }
  }
  return true;
}

}  // namespace

LayoutEngine::LayoutEngine(View& root)
    : root_(root), direction_(root.layoutDirection()), scale_(root.displayScale()) {
  ensureItem(root);
  std::vector<SharedConstraint> constraints;
  collect(root, constraints);
  std::sort(constraints.begin(), constraints.end(),
            [](const SharedConstraint& a, const SharedConstraint& b) { return a->order_ < b->order_; });
  for (const SharedConstraint& constraint : constraints) addEntry(constraint);
}

LayoutEngine::~LayoutEngine() {
  for (const Item& item : items_) item.item->engineSlot_ = kNoSlot;
  for (const Entry& entry : entries_) {
    if (entry.constraint) entry.constraint->engineSlot_ = kNoSlot;
  }
}

void LayoutEngine::collect(View& view, std::vector<SharedConstraint>& constraints) {
  if (&view != &root_ && view.isLayoutRoot()) return;
  if (view.isLaidOutByConstraints()) ensureItem(view);
  constraints.insert(constraints.end(), view.constraints_.begin(), view.constraints_.end());
  for (const auto& subview : view.subviews_) collect(*subview, constraints);
}

std::uint32_t LayoutEngine::ensureItem(LayoutItem& item) {
  if (item.engineSlot_ != kNoSlot) return item.engineSlot_;
  const auto slot = static_cast<std::uint32_t>(items_.size());
  item.engineSlot_ = slot;
  Item& made = items_.emplace_back();
  made.item = &item;
  made.view = item.owningView() == &item ? item.owningView() : nullptr;
  made.isRoot = &item == &root_;
  for (const Axis axis : kAxes) {
    ItemAxis& part = made.axes[axis];
    if (!made.isRoot) part.position = systems_[axis].addVariable();
    part.size = systems_[axis].addVariable();
  }
  View* view = made.view;
  // A frame counts from the superview, which may itself be placed by constraints.
  if (view != nullptr && view != &root_ && !view->isLaidOutByConstraints()) ensureItem(*view->superview());
  return slot;
}

// ---- Constraints ----

void LayoutEngine::constraintDidChange(const SharedConstraint& constraint) {
  if (constraint->engineSlot_ == kNoSlot) {
    addEntry(constraint);
    return;
  }
  Entry& entry = entries_[constraint->engineSlot_];
  if (!std::exchange(entry.queued, true)) queue_.push_back(constraint->engineSlot_);
}

void LayoutEngine::addEntry(const SharedConstraint& constraint) {
  const std::uint32_t slot = entries_.add({constraint, {}, std::nullopt, true});
  constraint->engineSlot_ = slot;
  queue_.push_back(slot);
  if (dependsOnWidths(*constraint)) dependentEntries_.push_back(slot);
}

void LayoutEngine::removeEntry(std::uint32_t slot) {
  const Entry& entry = entries_[slot];
  if (entry.row) systems_[axisOf(*entry.constraint)].remove(*entry.row);
  entry.constraint->engineSlot_ = kNoSlot;
  std::erase(dependentEntries_, slot);
  entries_.remove(slot);
}

void LayoutEngine::processQueue() {
  for (const std::uint32_t slot : queue_) {
    Entry& entry = entries_[slot];
    entry.queued = false;
    if (entry.constraint->isActive()) {
      updateEntry(entry);
    } else {
      removeEntry(slot);
    }
  }
  queue_.clear();
}

void LayoutEngine::updateEntry(Entry& entry) {
  ConstraintSystem& target = systems_[axisOf(*entry.constraint)];
  const auto linear = linearFor(*entry.constraint);
  if (entry.row && linear && sameTerms(*linear, entry.linear)) {
    entry.linear.constant = linear->constant;
    target.setConstant(*entry.row, linear->constant);
    return;
  }
  if (entry.row) target.remove(*entry.row);
  entry.row.reset();
  if (!linear) return;
  entry.linear = *linear;
  entry.row = target.add(*linear);
}

std::optional<LinearConstraint> LayoutEngine::linearFor(const LayoutConstraint& constraint) {
  const double factor = constraint.multiplier_;
  if (!std::isfinite(constraint.constant_) || !std::isfinite(factor) || !(constraint.priority_ >= 0)) {
    if (!std::exchange(constraint.faultLogged_, true)) {
      logError("A constraint with a value that is no number is left out of the layout: %@",
               {constraint.description()});
    }
    return std::nullopt;
  }
  LinearConstraint linear;
  linear.relation = constraint.relation_;
  linear.priority = constraint.priority_;
  linear.order = constraint.order_;
  linear.constant = -sanitizedLength(constraint.constant_);
  const Axis axis = axisOf(constraint);
  LayoutItem& first = itemFor(*constraint.firstItem(), constraint.first_.attribute);
  addAttribute(linear, axis, items_[ensureItem(first)], constraint.first_.attribute, 1);
  if (constraint.hasSecondItem()) {
    LayoutItem& second = itemFor(*constraint.secondItem(), constraint.second_.attribute);
    addAttribute(linear, axis, items_[ensureItem(second)], constraint.second_.attribute, -factor);
  }
  return linear;
}

Axis LayoutEngine::axisOf(const LayoutConstraint& constraint) {
  const bool mixed = constraint.hasSecondItem() && ui::axisOf(constraint.second_.attribute) == Axis::vertical;
  return mixed ? Axis::vertical : ui::axisOf(constraint.first_.attribute);
}

// Whether the constraint's row has to be made again when widths and texts have changed.
bool LayoutEngine::dependsOnWidths(const LayoutConstraint& constraint) {
  const LayoutAttribute first = constraint.first_.attribute;
  const LayoutAttribute second = constraint.second_.attribute;
  return isBaseline(first) || isBaseline(second) ||
         (constraint.hasSecondItem() && ui::axisOf(first) != ui::axisOf(second));
}

// The item itself or, for a baseline, the view inside whose baseline it is.
LayoutItem& LayoutEngine::itemFor(LayoutItem& item, LayoutAttribute attribute) const {
  View* view = isBaseline(attribute) ? item.owningView() : nullptr;
  for (int i = 0; view != nullptr && i < kLongestBaselineChain; ++i) {
    View& next = attribute == LayoutAttribute::firstBaseline ? view->viewForFirstBaselineLayout()
                                                             : view->viewForLastBaselineLayout();
    if (&next == view) break;
    view = &next;
  }
  const bool usable = view != nullptr && &view->layoutRoot() == &root_;
  return usable ? *view : item;
}

// In a constraint between heights a width is a number: it has been solved by then.
void LayoutEngine::addAttribute(LinearConstraint& linear, Axis axis, Item& item, LayoutAttribute attribute,
                                double factor) {
  if (ui::axisOf(attribute) != axis) {
    const Edges width = edges(item, Axis::horizontal);
    linear.constant += factor * (width.high - width.low);
    return;
  }
  struct Shares {
    double position, size;
  };
  // In the order of LayoutAttribute; a first baseline counts from the top, save where there is none.
  static constexpr std::array<Shares, 10> kShares = {
      {{1, 0}, {1, 1}, {1, 0.5}, {0, 1}, {1, 0}, {1, 1}, {1, 0.5}, {0, 1}, {1, 0}, {1, 1}}};
  Shares shares = kShares[static_cast<std::size_t>(attribute)];
  if (attribute == LayoutAttribute::firstBaseline) {
    if (item.firstBaselineFromTop) linear.constant += factor * *item.firstBaselineFromTop;
    if (!item.firstBaselineFromTop) shares.size = 1;
  }
  if (attribute == LayoutAttribute::lastBaseline) linear.constant -= factor * item.lastBaselineFromBottom;
  const ItemAxis& part = item.axes[axis];
  if (shares.position != 0 && !item.isRoot) linear.addTerm(part.position, factor * shares.position);
  if (shares.size != 0) linear.addTerm(part.size, factor * shares.size);
}

// ---- Solving ----

void LayoutEngine::layOut() {
  solve(root_.frame().size(), kFramePriority, kFramePriority);
  giveFrames(root_, {});
}

Size LayoutEngine::fittingSize(const Size& target, LayoutPriority horizontal, LayoutPriority vertical) {
  if (fitting_ && fitting_->target == target && fitting_->horizontal == horizontal &&
      fitting_->vertical == vertical) {
    return fitting_->result;
  }
  solve(target, std::min(horizontal, kFramePriority), std::min(vertical, kFramePriority));
  const Edges width = edges(items_.front(), Axis::horizontal);
  const double height = sanitizedLength(systems_.vertical.value(items_.front().axes.vertical.size));
  const Size result{width.high - width.low, std::max(0.0, ceiledToPixel(height, scale_))};
  fitting_ = Fitting{target, horizontal, vertical, result};
  return result;
}

void LayoutEngine::solve(const Size& rootSize, LayoutPriority horizontal, LayoutPriority vertical) {
  const PerAxis<LayoutPriority> priorities = {horizontal, vertical};
  const PerAxis<double> sizes = {rootSize.width, rootSize.height};
  for (const Axis axis : kAxes) {
    LinearConstraint linear;
    linear.priority = priorities[axis];
    linear.constant = -sanitizedLength(sizes[axis]);
    linear.addTerm(items_.front().axes[axis].size, 1);
    RowId& row = items_.front().axes[axis].frameSize;
    auto& before = rootPriority_[axis];
    if (row && before != linear.priority) {
      systems_[axis].remove(*row);
      row.reset();
    }
    before = linear.priority;
    setRow(row, axis, linear);
  }
  processQueue();
  updateWidths();
  if (systems_.horizontal.solve()) logLeftOut(Axis::horizontal);
  measureHeights();
  updateDependentConstraints();
  const bool changed = systems_.vertical.solve();
  if (shortenTexts()) systems_.vertical.solve();
  if (changed) logLeftOut(Axis::vertical);
}

void LayoutEngine::setRow(RowId& row, Axis axis, const LinearConstraint& linear) {
  if (row) {
    systems_[axis].setConstant(*row, linear.constant);
  } else {
    row = systems_[axis].add(linear);
  }
}

// By index: asking a view may bring an item that was not there.
void LayoutEngine::updateWidths() {
  for (std::size_t i = 1; i < items_.size(); ++i) {
    View* view = items_[i].view;
    if (view == nullptr) continue;
    if (!view->isLaidOutByConstraints()) setFrameRows(items_[i]);
    const bool ask = view->contentChanged_ || !items_[i].measuredWidth;
    if (ask) setContentRows(items_[i], Axis::horizontal, view->intrinsicWidth());
  }
}

void LayoutEngine::setContentRows(Item& item, Axis axis, std::optional<double> length) {
  ItemAxis& part = item.axes[axis];
  if (!length) {
    for (RowId* row : {&part.hugging, &part.resistance, &part.notNegative}) {
      if (*row) systems_[axis].remove(**row);
      row->reset();
    }
    return;
  }
  LinearConstraint linear;
  linear.addTerm(part.size, 1);
  linear.relation = Relation::greaterThanOrEqual;
  linear.priority = kFramePriority;
  setRow(part.notNegative, axis, linear);
  linear.constant = -std::max(0.0, sanitizedLength(*length));
  linear.priority = kHighPriority;
  setRow(part.resistance, axis, linear);
  linear.relation = Relation::lessThanOrEqual;
  linear.priority = kLowPriority;
  setRow(part.hugging, axis, linear);
}

void LayoutEngine::setFrameRows(Item& item) {
  Item& parent = items_[item.view->superview()->engineSlot_];
  const Rect& frame = item.view->frame();
  const bool mirrored = direction_ == LayoutDirection::rightToLeft;
  const double parentWidth = parent.isRoot ? mirrorWidth() : item.view->superview()->frame().width;
  const double leading = mirrored ? parentWidth - frame.maxX() : frame.x;
  const PerAxis<double> positions = {leading, frame.y};
  const PerAxis<double> sizes = {frame.width, frame.height};
  for (const Axis axis : kAxes) {
    ItemAxis& part = item.axes[axis];
    LinearConstraint size;
    size.priority = kFramePriority;
    size.constant = -sizes[axis];
    size.addTerm(part.size, 1);
    setRow(part.frameSize, axis, size);
    LinearConstraint position;
    position.priority = kFramePriority;
    position.constant = -positions[axis];
    position.addTerm(part.position, 1);
    if (!parent.isRoot) position.addTerm(parent.axes[axis].position, -1);
    setRow(part.framePosition, axis, position);
  }
}

void LayoutEngine::measureHeights() {
  for (std::size_t i = 1; i < items_.size(); ++i) {
    if (items_[i].view == nullptr) continue;
    measureHeight(items_[i]);
    keepInRoot(items_[i]);
  }
}

void LayoutEngine::measureHeight(Item& item) {
  const Edges horizontal = edges(item, Axis::horizontal);
  const double width = horizontal.high - horizontal.low;
  if (!item.view->contentChanged_ && item.measuredWidth == width) return;
  item.measuredWidth = width;
  setContentRows(item, Axis::vertical, item.view->intrinsicHeight(width));
  readBaselines(item);
  item.view->contentChanged_ = false;
}

void LayoutEngine::readBaselines(Item& item) {
  item.firstBaselineFromTop = item.view->firstBaselineFromTop();
  if (item.firstBaselineFromTop) item.firstBaselineFromTop = sanitizedLength(*item.firstBaselineFromTop);
  item.lastBaselineFromBottom = sanitizedLength(item.view->lastBaselineFromBottom());
}

// A frame that was given may be anywhere, and what is hidden need not be at a place that anything determines.
void LayoutEngine::keepInRoot(Item& item) {
  const bool wanted =
      item.firstBaselineFromTop && item.view->isLaidOutByConstraints() && isShownIn(root_, *item.view);
  if (wanted == item.belowTop.has_value()) return;
  if (!wanted) {
    for (RowId* row : {&item.belowTop, &item.aboveBottom}) {
      systems_.vertical.remove(**row);
      row->reset();
    }
    return;
  }
  const ItemAxis& part = item.axes.vertical;
  LinearConstraint linear;
  linear.priority = kTextInsidePriority;
  linear.relation = Relation::greaterThanOrEqual;
  linear.addTerm(part.position, 1);
  setRow(item.belowTop, Axis::vertical, linear);
  linear.relation = Relation::lessThanOrEqual;
  linear.addTerm(part.size, 1);
  linear.addTerm(items_.front().axes.vertical.size, -1);
  setRow(item.aboveBottom, Axis::vertical, linear);
}

// What was made smaller than its content asks for only the lines that it then shows, so that a block of texts
// is as high as what can be seen of it. The next layout starts from the whole content again.
bool LayoutEngine::shortenTexts() {
  bool shortened = false;
  for (Item& item : items_) {
    if (!item.belowTop || !item.axes.vertical.resistance) continue;
    const Rect frame = frameInRoot(item);
    const double whole = -systems_.vertical.constantOf(*item.axes.vertical.resistance);
    if (frame.height >= whole) continue;
    const double wanted = item.view->contentHeightWithin(frame.size());
    setContentRows(item, Axis::vertical, wanted);
    item.measuredWidth.reset();
    shortened = true;
  }
  return shortened;
}

void LayoutEngine::updateDependentConstraints() {
  for (const std::uint32_t slot : dependentEntries_) updateEntry(entries_[slot]);
}

void LayoutEngine::logLeftOut(Axis axis) {
  for (const ConstraintSystem::Id id : systems_[axis].leftOut()) {
    for (const Entry& entry : entries_) {
      if (entry.row != id || axisOf(*entry.constraint) != axis) continue;
      if (std::exchange(entry.constraint->faultLogged_, true)) continue;
      logError("A required constraint contradicts earlier ones and gives way: %@",
               {entry.constraint->description()});
    }
  }
}

// ---- Frames ----

LayoutEngine::Edges LayoutEngine::edges(const Item& item, Axis axis) const {
  const ConstraintSystem& solved = systems_[axis];
  const double low = item.isRoot ? 0 : sanitizedLength(solved.value(item.axes[axis].position));
  const double high = low + std::max(0.0, sanitizedLength(solved.value(item.axes[axis].size)));
  return {snappedToPixel(low, scale_), snappedToPixel(high, scale_)};
}

double LayoutEngine::mirrorWidth() const { return snappedToPixel(root_.frame().width, scale_); }

Rect LayoutEngine::frameInRoot(const Item& item) const {
  const Edges x = edges(item, Axis::horizontal);
  const Edges y = edges(item, Axis::vertical);
  const bool mirrored = direction_ == LayoutDirection::rightToLeft;
  return {mirrored ? mirrorWidth() - x.high : x.low, y.low, x.high - x.low, y.high - y.low};
}

// `origin` is the view's, from the root's. Superviews come first: a frame counts from where they are.
void LayoutEngine::giveFrames(View& view, const Point& origin) {
  const Point back{-origin.x, -origin.y};
  for (const auto& guide : view.guides_) {
    if (guide->engineSlot_ != kNoSlot) {
      guide->layoutFrame_ = frameInRoot(items_[guide->engineSlot_]).movedBy(back);
    }
  }
  for (const auto& subview : view.subviews_) {
    // A layout root's slot is one of its own engine.
    if (subview->isLayoutRoot()) continue;
    if (subview->engineSlot_ != kNoSlot && subview->isLaidOutByConstraints()) {
      subview->setFrameFromLayout(frameInRoot(items_[subview->engineSlot_]).movedBy(back));
    }
    giveFrames(*subview, origin + subview->frame().origin());
  }
}

}  // namespace linewatch::ui
