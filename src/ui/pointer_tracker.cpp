#include "ui/pointer_tracker.h"

#include <algorithm>

namespace linewatch::ui {

namespace {

std::shared_ptr<View> sharedFrom(const View& view) {
  const View* superview = view.superview();
  if (superview == nullptr) return nullptr;
  const auto& siblings = superview->subviews();
  const auto place =
      std::find_if(siblings.begin(), siblings.end(), [&](const auto& each) { return each.get() == &view; });
  return place != siblings.end() ? *place : nullptr;
}

}  // namespace

bool PointerTracker::handle(View& root, PointerPhase phase, const Point& point) {
  if (phase == PointerPhase::pressed) {
    target_.reset();
    for (View* view = root.hitTest(point); view != nullptr && view != root.superview();
         view = view->superview()) {
      if (!view->handlePointer(phase, view->convertPointFrom(point, root))) continue;
      target_ = sharedFrom(*view);
      return true;
    }
    return false;
  }
  const std::shared_ptr<View> target = target_.lock();
  if (phase != PointerPhase::moved) target_.reset();
  return target && target->isDescendantOf(root) &&
         target->handlePointer(phase, target->convertPointFrom(point, root));
}

bool PointerTracker::scroll(View& root, const Point& point, double deltaY) {
  for (View* view = root.hitTest(point); view != nullptr && view != root.superview();
       view = view->superview()) {
    if (view->handleScroll(deltaY)) return true;
  }
  return false;
}

}  // namespace linewatch::ui
