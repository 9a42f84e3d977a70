#include "ui/view.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/log.h"
#include "platform/platform.h"
#include "ui/interface_settings.h"
#include "ui/layout_engine.h"

namespace linewatch::ui {

namespace {

// A layout that marks itself again and again is taken as it is after so many rounds.
constexpr int kLayoutPasses = 10;

Rect sanitized(const Rect& frame) {
  return {sanitizedLength(frame.x), sanitizedLength(frame.y), std::max(0.0, sanitizedLength(frame.width)),
          std::max(0.0, sanitizedLength(frame.height))};
}

}  // namespace

View::View() = default;

View::View(const Rect& frame) : frame_(sanitized(frame)) {}

View::~View() {
  engine_.reset();
  for (const auto& constraint : constraints_) constraint->holder_ = nullptr;
  for (const auto& subview : subviews_) subview->superview_ = nullptr;
  for (const auto& guide : guides_) guide->owningView_ = nullptr;
}

// ---- The tree ----

bool View::isDescendantOf(const View& view) const {
  const View* each = this;
  while (each != nullptr && each != &view) each = each->superview_;
  return each != nullptr;
}

void View::addSubview(const std::shared_ptr<View>& view) { insertSubview(view, subviews_.size()); }

void View::insertSubview(const std::shared_ptr<View>& view, std::size_t index) {
  if (!view || isDescendantOf(*view)) return;
  // The one given may be among the subviews' own.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): keeps the view alive
  const std::shared_ptr<View> added = view;
  added->removeFromSuperview();
  if (!added->ownLayoutRoot_) added->engine_.reset();
  subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(std::min(index, subviews_.size())), added);
  added->superview_ = this;
  added->markForLayout();
  if (!added->ownLayoutRoot_) structureDidChange();
  setNeedsDisplay();
}

void View::removeFromSuperview() {
  if (superview_ == nullptr) return;
  View& former = *superview_;
  former.dropConstraintsWith(*this);
  superview_ = nullptr;
  // While this view is still there: the engine knows it.
  if (!ownLayoutRoot_) former.structureDidChange();
  former.shownSubviewsDidChange(*this);
  setNeedsDisplay();
  former.setNeedsDisplay();
  // The last use of this view, which its superview may have been the last to hold.
  std::erase_if(former.subviews_, [&](const auto& subview) { return subview.get() == this; });
}

void View::addLayoutGuide(const std::shared_ptr<LayoutGuide>& guide) {
  if (!guide || guide->owningView_ == this) return;
  if (guide->owningView_ != nullptr) guide->owningView_->removeLayoutGuide(guide);
  guide->owningView_ = this;
  guides_.push_back(guide);
}

void View::removeLayoutGuide(const std::shared_ptr<LayoutGuide>& guide) {
  if (!guide || guide->owningView_ != this) return;
  for (View* view = this; view != nullptr; view = view->superview_) {
    const auto constraints = view->constraints_;
    for (const auto& constraint : constraints) {
      if (constraint->firstItem() == guide.get() || constraint->secondItem() == guide.get()) {
        constraint->setActive(false);
      }
    }
  }
  guide->owningView_ = nullptr;
  structureDidChange();
  std::erase(guides_, guide);
}

void View::dropConstraintsWith(const View& leaving) {
  const auto isInside = [&](LayoutItem* item) {
    const View* owner = item != nullptr ? item->owningView() : nullptr;
    return owner != nullptr && owner->isDescendantOf(leaving);
  };
  for (View* view = this; view != nullptr; view = view->superview_) {
    const auto constraints = view->constraints_;
    for (const auto& constraint : constraints) {
      if (isInside(constraint->firstItem()) || isInside(constraint->secondItem()))
        constraint->setActive(false);
    }
  }
}

// ---- Geometry ----

void View::setFrame(const Rect& frame) {
  const Rect wanted = sanitized(frame);
  if (wanted == frame_) return;
  const Size before = frame_.size();
  frame_ = wanted;
  if (engineSlot_ != UINT32_MAX && !isLayoutRoot()) layoutRoot().setNeedsLayout();
  if (before != frame_.size()) {
    resizeSubviews(before);
    markForLayout();
  }
  setNeedsDisplay();
}

void View::setFrameFromLayout(const Rect& frame) {
  if (frame == frame_) return;
  const Size before = frame_.size();
  frame_ = frame;
  if (before == frame_.size()) return;
  resizeSubviews(before);
  markForLayout();
}

void View::resizeSubviews(const Size& before) {
  for (const auto& subview : subviews_) {
    if (subview->laidOutByConstraints_) continue;
    Rect frame = subview->frame_;
    if (subview->resizesWidth_) frame.width += frame_.width - before.width;
    if (subview->resizesHeight_) frame.height += frame_.height - before.height;
    subview->setFrame(frame);
  }
}

Rect View::convertRectTo(const Rect& rect, const View& ancestor) const {
  Rect moved = rect;
  for (const View* view = this; view != nullptr && view != &ancestor; view = view->superview_) {
    moved = moved.movedBy(view->frame_.origin());
  }
  return moved;
}

Point View::convertPointFrom(const Point& point, const View& ancestor) const {
  return point - convertRectTo({}, ancestor).origin();
}

LayoutDirection View::layoutDirection() const {
  for (const View* view = this; view != nullptr; view = view->superview_) {
    if (view->direction_) return *view->direction_;
  }
  return platform().interfaceSettings().layoutDirection();
}

void View::setLayoutDirection(std::optional<LayoutDirection> direction) {
  if (direction == direction_) return;
  direction_ = direction;
  environmentDidChange();
}

double View::displayScale() const {
  for (const View* view = this; view != nullptr; view = view->superview_) {
    if (view->scale_) return *view->scale_;
  }
  return platform().interfaceSettings().displayScale();
}

void View::setDisplayScale(std::optional<double> scale) {
  if (scale == scale_) return;
  scale_ = scale;
  environmentDidChange();
}

void View::environmentDidChange() {
  layoutRoot().setNeedsLayout();
  markForLayout();
  contentChanged_ = true;
  for (const auto& subview : subviews_) subview->environmentDidChange();
  setNeedsDisplay();
}

// ---- Layout ----

void View::setLaidOutByConstraints(bool byConstraints) {
  if (laidOutByConstraints_ == byConstraints) return;
  laidOutByConstraints_ = byConstraints;
  structureDidChange();
}

void View::setResizesWithSuperview(bool width, bool height) {
  resizesWidth_ = width;
  resizesHeight_ = height;
}

void View::invalidateIntrinsicContentSize() {
  contentChanged_ = true;
  layoutRoot().setNeedsLayout();
}

void View::becomeLayoutRoot() { ownLayoutRoot_ = true; }

View& View::layoutRoot() {
  View* view = this;
  while (!view->isLayoutRoot()) view = view->superview_;
  return *view;
}

void View::keepConstraint(const SharedConstraint& constraint) {
  constraints_.push_back(constraint);
  constraintDidChange(*constraint);
}

void View::dropConstraint(const LayoutConstraint& constraint) {
  const auto place = std::find_if(constraints_.begin(), constraints_.end(),
                                  [&](const auto& each) { return each.get() == &constraint; });
  if (place == constraints_.end()) return;
  const SharedConstraint kept = *place;
  constraints_.erase(place);
  constraintDidChange(*kept);
}

void View::constraintDidChange(LayoutConstraint& constraint) {
  View& root = layoutRoot();
  if (root.engine_) root.engine_->constraintDidChange(constraint.shared_from_this());
  root.setNeedsLayout();
}

void View::structureDidChange() {
  View& root = layoutRoot();
  root.engine_.reset();
  root.setNeedsLayout();
}

LayoutEngine& View::engine() {
  if (engine_ && !engine_->fitsEnvironment()) engine_.reset();
  if (!engine_) engine_ = std::make_unique<LayoutEngine>(*this);
  return *engine_;
}

void View::setNeedsLayout() {
  if (engine_) engine_->forgetFittingSize();
  markForLayout();
}

void View::markForLayout() {
  needsLayout_ = true;
  for (View* view = superview_; view != nullptr && !view->descendantNeedsLayout_; view = view->superview_) {
    view->descendantNeedsLayout_ = true;
    view->descendantDidNeedLayout();
  }
  invalidate();
}

void View::layoutIfNeeded() {
  View& root = layoutRoot();
  for (int pass = 0; root.needsLayout(); ++pass) {
    if (pass == kLayoutPasses) {
      logError("A layout never comes to rest and is left as it is: %@", {classNameOf(root)});
      return root.giveUpLayout();
    }
    root.layoutTree();
  }
}

void View::layoutTree() {
  if (std::exchange(needsLayout_, false)) layoutSubviews();
  if (!std::exchange(descendantNeedsLayout_, false)) return;
  // By index: a layout may add and remove views.
  // NOLINTNEXTLINE(modernize-loop-convert): a range would not outlive that.
  for (std::size_t i = 0; i < subviews_.size(); ++i) {
    const std::shared_ptr<View> subview = subviews_[i];
    if (subview->needsLayout()) subview->layoutTree();
  }
}

void View::giveUpLayout() {
  needsLayout_ = false;
  descendantNeedsLayout_ = false;
  for (const auto& subview : subviews_) subview->giveUpLayout();
}

void View::layoutSubviews() {
  if (isLayoutRoot()) engine().layOut();
}

Size View::systemLayoutSizeFittingSize(const Size& target, LayoutPriority horizontal,
                                       LayoutPriority vertical) {
  if (isLayoutRoot()) return engine().fittingSize(target, horizontal, vertical);
  layoutIfNeeded();
  return frame_.size();
}

// ---- Appearance ----

void View::setHidden(bool hidden) {
  if (std::exchange(hidden_, hidden) == hidden) return;
  if (superview_ != nullptr) superview_->shownSubviewsDidChange(*this);
  setNeedsDisplay();
}

void View::setAlpha(double alpha) {
  const double wanted = std::isnan(alpha) ? 1 : std::clamp(alpha, 0.0, 1.0);
  if (std::exchange(alpha_, wanted) != wanted) setNeedsDisplay();
}

void View::setBackgroundColor(const Color& color) {
  if (backgroundColor_ == color) return;
  backgroundColor_ = color;
  setNeedsDisplay();
}

void View::setClipsToBounds(bool clips) {
  if (std::exchange(clipsToBounds_, clips) != clips) setNeedsDisplay();
}

void View::render(Canvas& canvas) {
  if (hidden_ || !(alpha_ > 0)) return;
  canvas.save();
  canvas.translate(frame_.origin());
  if (alpha_ < 1) canvas.multiplyAlpha(alpha_);
  if (clipsToBounds_) canvas.clip(bounds());
  if (backgroundColor_ != Color(SemanticColor::clear)) canvas.fillRect(bounds(), backgroundColor_);
  draw(canvas);
  for (const auto& subview : subviews_) subview->render(canvas);
  drawOverlay(canvas);
  canvas.restore();
}

void View::setNeedsDisplay() { invalidate(); }

void View::invalidate() {
  const View* top = this;
  while (top->superview_ != nullptr) top = top->superview_;
  if (top->invalidationHandler_) top->invalidationHandler_();
}

// ---- Input ----

View* View::hitTest(const Point& point) {
  if (hidden_ || !(alpha_ > 0) || !bounds().contains(point)) return nullptr;
  // Clang 14 cannot compile std::views::reverse of this standard library.
  // NOLINTNEXTLINE(modernize-loop-convert)
  for (auto subview = subviews_.rbegin(); subview != subviews_.rend(); ++subview) {
    if (View* hit = (*subview)->hitTest(point - (*subview)->frame_.origin())) return hit;
  }
  return this;
}

}  // namespace linewatch::ui
