#include "ui/view.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/log.h"
#include "platform/platform.h"
#include "ui/interface_settings.h"

namespace linewatch::ui {

namespace {

// The limit of layout rounds, for a layout that marks itself again in each round.
constexpr int kLayoutPasses = 10;

Rect sanitized(const Rect& frame) {
  return {sanitizedLength(frame.x), sanitizedLength(frame.y), std::max(0.0, sanitizedLength(frame.width)),
          std::max(0.0, sanitizedLength(frame.height))};
}

}  // namespace

View::View() = default;

View::View(const Rect& frame) : frame_(sanitized(frame)) {}

View::~View() {
  endLayout();
  for (const auto& subview : subviews_) subview->superview_ = nullptr;
}

// ---- The tree ----

void View::addSubview(const std::shared_ptr<View>& view) { insertSubview(view, subviews_.size()); }

void View::insertSubview(const std::shared_ptr<View>& view, std::size_t index) {
  if (!view || isDescendantOf(*view)) return;
  // `view` may refer to a pointer in the former superview, which removeFromSuperview erases.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): keeps the view alive
  const std::shared_ptr<View> added = view;
  added->removeFromSuperview();
  subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(std::min(index, subviews_.size())), added);
  added->superview_ = this;
  added->markForLayout();
  added->didEnterSuperbox();
  setNeedsDisplay();
}

void View::removeFromSuperview() {
  if (superview_ == nullptr) return;
  View& former = *superview_;
  willLeaveSuperbox();
  superview_ = nullptr;
  former.shownSubviewsDidChange(*this);
  setNeedsDisplay();
  former.setNeedsDisplay();
  // Last, as the superview may hold the only reference to this view.
  std::erase_if(former.subviews_, [&](const auto& subview) { return subview.get() == this; });
}

// ---- Geometry ----

void View::setFrame(const Rect& frame) {
  const Rect wanted = sanitized(frame);
  if (wanted == frame_) return;
  const Size before = frame_.size();
  frame_ = wanted;
  if (isInEngine() && !isLayoutRoot()) layoutRoot().setNeedsLayout();
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
    if (subview->isLaidOutByConstraints()) continue;
    Rect frame = subview->frame_;
    if (subview->resizesWidth_) frame.width += frame_.width - before.width;
    if (subview->resizesHeight_) frame.height += frame_.height - before.height;
    subview->setFrame(frame);
  }
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
  markContentChanged();
  for (const auto& subview : subviews_) subview->environmentDidChange();
  setNeedsDisplay();
}

// ---- Layout ----

void View::setResizesWithSuperview(bool width, bool height) {
  resizesWidth_ = width;
  resizesHeight_ = height;
}

void View::setNeedsLayout() {
  forgetFittingSize();
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
  View* root = this;
  while (!root->isLayoutRoot()) root = root->superview_;
  for (int pass = 0; root->needsLayout(); ++pass) {
    if (pass == kLayoutPasses) {
      logError("A layout never comes to rest and is left as it is: %@", {classNameOf(*root)});
      return root->giveUpLayout();
    }
    root->layoutTree();
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
  if (isLayoutRoot()) layOutByConstraints();
}

Size View::systemLayoutSizeFittingSize(const Size& size, LayoutPriority withHorizontalFittingPriority,
                                       LayoutPriority verticalFittingPriority) {
  if (isLayoutRoot()) return fittingSize(size, withHorizontalFittingPriority, verticalFittingPriority);
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

void View::setClipsToBounds(bool clips) {
  if (std::exchange(clipsToBounds_, clips) != clips) setNeedsDisplay();
}

void View::render(Canvas& canvas) {
  if (hidden_ || !(alpha_ > 0)) return;
  canvas.save();
  canvas.translate(frame_.origin());
  if (alpha_ < 1) canvas.multiplyAlpha(alpha_);
  if (clipsToBounds_) canvas.clip(bounds());
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
