#include "ui/layout/layout_engine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "platform/log.h"

namespace linewatch::ui {

namespace {

constexpr std::uint32_t kNoSlot = UINT32_MAX;
// A given frame wins over everything but constraints.
constexpr LayoutPriority kFramePriority = 999.5;
// When texts lose lines, the first text keeps its first line before the other texts keep theirs.
constexpr LayoutPriority kFirstTextLinePriority = 790;
constexpr LayoutPriority kTextLinePriority = 780;
// Ends the search when boxes name each other as the source of their baselines.
constexpr int kLongestBaselineChain = 32;

constexpr std::array kAxes = {Axis::horizontal, Axis::vertical};

bool isBaseline(LayoutAttribute attribute) {
  return attribute == LayoutAttribute::firstBaseline || attribute == LayoutAttribute::lastBaseline;
}

bool isShownIn(const LayoutBox& root, const LayoutBox& box) {
  const LayoutBox* each = &box;
  while (each != nullptr && each != &root && !each->isHidden()) each = each->superbox();
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

LayoutEngine::LayoutEngine(LayoutBox& root)
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

void LayoutEngine::collect(LayoutBox& box, std::vector<SharedConstraint>& constraints) {
  if (&box != &root_ && box.isLayoutRoot()) return;
  if (box.isLaidOutByConstraints()) ensureItem(box);
  constraints.insert(constraints.end(), box.constraints_.begin(), box.constraints_.end());
  for (std::size_t i = 0; i < box.subboxCount(); ++i) collect(box.subboxAt(i), constraints);
}

std::uint32_t LayoutEngine::ensureItem(LayoutItem& item) {
  if (item.engineSlot_ != kNoSlot) return item.engineSlot_;
  const auto slot = static_cast<std::uint32_t>(items_.size());
  item.engineSlot_ = slot;
  Item& made = items_.emplace_back();
  made.item = &item;
  made.box = item.owningBox() == &item ? item.owningBox() : nullptr;
  made.isRoot = &item == &root_;
  for (const Axis axis : kAxes) {
    ItemAxis& part = made.axes[axis];
    if (!made.isRoot) part.position = systems_[axis].addVariable();
    part.size = systems_[axis].addVariable();
  }
  LayoutBox* box = made.box;
  // A frame is relative to the superbox, which constraints may place.
  if (box != nullptr && box != &root_ && !box->isLaidOutByConstraints()) ensureItem(*box->superbox());
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
  if (isBaseline(constraint->first_.attribute) || isBaseline(constraint->second_.attribute)) {
    baselineEntries_.push_back(slot);
  }
}

void LayoutEngine::removeEntry(std::uint32_t slot) {
  const Entry& entry = entries_[slot];
  if (entry.row) systems_[axisOf(*entry.constraint)].remove(*entry.row);
  entry.constraint->engineSlot_ = kNoSlot;
  std::erase(baselineEntries_, slot);
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
  if (!std::isfinite(constraint.constant_)) {
    if (!std::exchange(constraint.faultLogged_, true)) {
      logError("A constraint whose constant is not a finite number is left out of the layout: %@",
               {constraint.description()});
    }
    return std::nullopt;
  }
  LinearConstraint linear;
  linear.relation = constraint.relation_;
  linear.order = constraint.order_;
  linear.constant = -sanitizedLength(constraint.constant_);
  LayoutItem& first = itemFor(*constraint.firstItem(), constraint.first_.attribute);
  addAttribute(linear, items_[ensureItem(first)], constraint.first_.attribute, 1);
  if (constraint.hasSecondItem()) {
    LayoutItem& second = itemFor(*constraint.secondItem(), constraint.second_.attribute);
    addAttribute(linear, items_[ensureItem(second)], constraint.second_.attribute, -1);
  }
  return linear;
}

// Anchors make constraints within one axis only.
Axis LayoutEngine::axisOf(const LayoutConstraint& constraint) {
  return ui::axisOf(constraint.first_.attribute);
}

// The item itself or, for a baseline, the box inside it whose baseline it has.
LayoutItem& LayoutEngine::itemFor(LayoutItem& item, LayoutAttribute attribute) const {
  LayoutBox* box = isBaseline(attribute) ? item.owningBox() : nullptr;
  for (int i = 0; box != nullptr && i < kLongestBaselineChain; ++i) {
    LayoutBox& next =
        attribute == LayoutAttribute::firstBaseline ? box->boxForFirstBaseline() : box->boxForLastBaseline();
    if (&next == box) break;
    box = &next;
  }
  const bool usable = box != nullptr && &box->layoutRoot() == &root_;
  return usable ? *box : item;
}

// Every attribute is position + share of the size + a constant of the content's baselines.
void LayoutEngine::addAttribute(LinearConstraint& linear, Item& item, LayoutAttribute attribute,
                                double sign) {
  struct Shares {
    double position, size;
  };
  // In the order of LayoutAttribute.
  static constexpr std::array<Shares, 9> kShares = {
      {{1, 0}, {1, 1}, {0, 1}, {1, 0}, {1, 1}, {1, 0.5}, {0, 1}, {1, 0}, {1, 1}}};
  Shares shares = kShares[static_cast<std::size_t>(attribute)];
  if (attribute == LayoutAttribute::firstBaseline) {
    if (item.firstBaselineFromTop) linear.constant += sign * *item.firstBaselineFromTop;
    // Without text the bottom is the first baseline.
    if (!item.firstBaselineFromTop) shares.size = 1;
  }
  if (attribute == LayoutAttribute::lastBaseline) linear.constant -= sign * item.lastBaselineFromBottom;
  const ItemAxis& part = item.axes[ui::axisOf(attribute)];
  if (shares.position != 0 && !item.isRoot) linear.addTerm(part.position, sign * shares.position);
  if (shares.size != 0) linear.addTerm(part.size, sign * shares.size);
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
  pullRootSize(Axis::horizontal, rootSize.width, horizontal);
  pullRootSize(Axis::vertical, rootSize.height, vertical);
  processQueue();
  updateWidths();
  if (systems_.horizontal.solve()) logLeftOut(Axis::horizontal);
  measureHeights();
  updateBaselineConstraints();
  const bool changed = systems_.vertical.solve();
  fitTexts();
  if (changed) logLeftOut(Axis::vertical);
}

void LayoutEngine::pullRootSize(Axis axis, double size, LayoutPriority priority) {
  ItemAxis& part = items_.front().axes[axis];
  if (part.frameSize && rootPriority_[axis] != priority) {
    systems_[axis].remove(*part.frameSize);
    part.frameSize.reset();
  }
  rootPriority_[axis] = priority;
  LinearConstraint linear;
  linear.priority = priority;
  linear.constant = -sanitizedLength(size);
  linear.addTerm(part.size, 1);
  setRow(part.frameSize, axis, linear);
}

void LayoutEngine::setRow(RowId& row, Axis axis, const LinearConstraint& linear) {
  if (row) {
    systems_[axis].setConstant(*row, linear.constant);
  } else {
    row = systems_[axis].add(linear);
  }
}

// By index: measuring a box may add an item.
void LayoutEngine::updateWidths() {
  for (std::size_t i = 1; i < items_.size(); ++i) {
    LayoutBox* box = items_[i].box;
    if (box == nullptr) continue;
    if (!box->isLaidOutByConstraints()) setFrameRows(items_[i]);
    const bool ask = box->contentChanged_ || !items_[i].measuredWidth;
    if (ask) setContentRows(items_[i], Axis::horizontal, box->intrinsicWidth());
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
  Item& parent = items_[item.box->superbox()->engineSlot_];
  const Rect& frame = item.box->frame();
  const bool mirrored = direction_ == LayoutDirection::rightToLeft;
  const double parentWidth = parent.isRoot ? mirrorWidth() : item.box->superbox()->frame().width;
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
    if (items_[i].box == nullptr) continue;
    if (items_[i].oneLine) systems_.vertical.remove(*std::exchange(items_[i].oneLine, std::nullopt));
    measureHeight(items_[i]);
    keepBaselinesInRoot(items_[i]);
  }
}

void LayoutEngine::measureHeight(Item& item) {
  const Edges horizontal = edges(item, Axis::horizontal);
  const double width = horizontal.high - horizontal.low;
  if (!item.box->contentChanged_ && item.measuredWidth == width) return;
  item.measuredWidth = width;
  setContentRows(item, Axis::vertical, item.box->intrinsicHeight(width));
  readBaselines(item);
  item.box->contentChanged_ = false;
}

void LayoutEngine::readBaselines(Item& item) {
  item.firstBaselineFromTop = item.box->firstBaselineFromTop();
  if (item.firstBaselineFromTop) item.firstBaselineFromTop = sanitizedLength(*item.firstBaselineFromTop);
  item.lastBaselineFromBottom = sanitizedLength(item.box->lastBaselineFromBottom());
}

void LayoutEngine::updateBaselineConstraints() {
  for (const std::uint32_t slot : baselineEntries_) updateEntry(entries_[slot]);
}

bool LayoutEngine::isShownText(const Item& item) const {
  return item.firstBaselineFromTop && item.axes.vertical.resistance && item.box->isLaidOutByConstraints() &&
         isShownIn(root_, *item.box);
}

// A box with a given frame may be anywhere, and constraints need not determine where a hidden one is.
void LayoutEngine::keepBaselinesInRoot(Item& item) {
  if (isShownText(item)) {
    keepInRoot(item, *item.firstBaselineFromTop, item.lastBaselineFromBottom);
    return;
  }
  for (RowId* row : {&item.topInside, &item.bottomInside}) {
    if (*row) systems_.vertical.remove(**row);
    row->reset();
  }
}

// The item's top moved down by `fromTop` and its bottom moved up by `fromBottom` stay in the root.
void LayoutEngine::keepInRoot(Item& item, double fromTop, double fromBottom) {
  const ItemAxis& part = item.axes.vertical;
  LinearConstraint linear;
  linear.priority = kTextInsidePriority;
  linear.relation = Relation::greaterThanOrEqual;
  linear.constant = fromTop;
  linear.addTerm(part.position, 1);
  setRow(item.topInside, Axis::vertical, linear);
  linear.relation = Relation::lessThanOrEqual;
  linear.constant = -fromBottom;
  linear.addTerm(part.size, 1);
  linear.addTerm(items_.front().axes.vertical.size, -1);
  setRow(item.bottomInside, Axis::vertical, linear);
}

bool LayoutEngine::isTooLow(const Item& item) const {
  if (!item.bottomInside) return false;
  return frameInRoot(item).height < -systems_.vertical.constantOf(*item.axes.vertical.resistance);
}

// If the constraints give every text its full height, only the baselines must be inside the root. Otherwise
// texts lose lines until all remaining lines are inside the root. No text loses its last line to make room
// for another text. The next layout starts with all lines again.
void LayoutEngine::fitTexts() {
  for (Item& item : items_) item.firstLine.reset();
  if (std::none_of(items_.begin(), items_.end(), [&](const Item& item) { return isTooLow(item); })) return;
  LayoutPriority priority = kFirstTextLinePriority;
  for (Item& item : items_) {
    if (!item.bottomInside) continue;
    keepInRoot(item, 0, 0);
    keepOneLine(item, std::exchange(priority, kTextLinePriority));
  }
  systems_.vertical.solve();
  for (Item& item : items_) {
    if (isTooLow(item)) shortenText(item);
  }
  systems_.vertical.solve();
  const auto first =
      std::find_if(items_.begin(), items_.end(), [](const Item& item) { return item.bottomInside; });
  keepFirstLine(*first);
}

void LayoutEngine::keepOneLine(Item& item, LayoutPriority priority) {
  LinearConstraint linear;
  linear.priority = priority;
  linear.relation = Relation::greaterThanOrEqual;
  linear.constant = -item.box->firstLineHeight(frameInRoot(item).width);
  linear.addTerm(item.axes.vertical.size, 1);
  item.oneLine = systems_.vertical.add(linear);
}

// Makes the text ask only for the lines that it shows, so that a block of texts is as high as the lines in
// it.
void LayoutEngine::shortenText(Item& item) {
  setContentRows(item, Axis::vertical, item.box->contentHeightWithin(frameInRoot(item).size()));
  item.measuredWidth.reset();
}

// Constraints may leave the first text less than a line, e.g. a low row at a large text size. Its first line
// is still shown, inside the root and as close as possible to where the constraints put it.
void LayoutEngine::keepFirstLine(Item& item) {
  const Rect frame = frameInRoot(item);
  const double height = item.box->firstLineHeight(frame.width);
  if (frame.height >= height) return;
  const double room = edges(items_.front(), Axis::vertical).high;
  const double top = snappedToPixel(std::max(0.0, std::min(frame.y, room - height)), scale_);
  item.firstLine = Edges{top, top + height};
}

void LayoutEngine::logLeftOut(Axis axis) {
  for (const ConstraintSystem::Id id : systems_[axis].leftOut()) {
    for (const Entry& entry : entries_) {
      if (entry.row != id || axisOf(*entry.constraint) != axis) continue;
      if (std::exchange(entry.constraint->faultLogged_, true)) continue;
      logError("A constraint contradicts earlier ones and is left out: %@",
               {entry.constraint->description()});
    }
  }
}

// ---- Frames ----

LayoutEngine::Edges LayoutEngine::edges(const Item& item, Axis axis) const {
  if (axis == Axis::vertical && item.firstLine) return *item.firstLine;
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

// `origin` is the box's, in the root. Superboxes come first, as frames are relative to theirs.
void LayoutEngine::giveFrames(LayoutBox& box, const Point& origin) {
  const Point back{-origin.x, -origin.y};
  for (const auto& guide : box.guides_) {
    if (guide->engineSlot_ != kNoSlot) {
      guide->layoutFrame_ = frameInRoot(items_[guide->engineSlot_]).movedBy(back);
    }
  }
  for (std::size_t i = 0; i < box.subboxCount(); ++i) {
    LayoutBox& subbox = box.subboxAt(i);
    // A layout root's slot is an index of its own engine.
    if (subbox.isLayoutRoot()) continue;
    if (subbox.engineSlot_ != kNoSlot && subbox.isLaidOutByConstraints()) {
      subbox.setFrameFromLayout(frameInRoot(items_[subbox.engineSlot_]).movedBy(back));
    }
    giveFrames(subbox, origin + subbox.frame().origin());
  }
}

}  // namespace linewatch::ui
