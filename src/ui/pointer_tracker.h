#pragma once

#include <memory>

#include "ui/view.h"

namespace linewatch::ui {

/// Brings a window's pointer to the views of its tree: who takes the press gets everything up to the release.
/// Main thread.
class PointerTracker {
 public:
  /// `point` is in the coordinates of `root`. True when a view took it.
  bool handle(View& root, PointerPhase phase, const Point& point);
  /// Scrolls the innermost scrolling view at the point.
  static bool scroll(View& root, const Point& point, double deltaY);

 private:
  std::weak_ptr<View> target_;
};

}  // namespace linewatch::ui
