#pragma once

#include <memory>

#include "ui/view.h"

namespace linewatch::ui {

/// Delivers a window's pointer events to its views. The view that accepts a press gets all events up to the
/// release. Main thread.
class PointerTracker {
 public:
  /// `point` is in the coordinates of `root`. True when a view accepted the event.
  bool handle(View& root, PointerPhase phase, const Point& point);
  /// Scrolls the innermost view at the point that can scroll.
  static bool scroll(View& root, const Point& point, double deltaY);

 private:
  std::weak_ptr<View> target_;
};

}  // namespace linewatch::ui
