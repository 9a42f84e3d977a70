#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "simulation/platform_test.h"
#include "ui/layout/geometry.h"
#include "ui/view.h"

namespace linewatch::ui {

inline void PrintTo(const Rect& rect, std::ostream* out) {
  *out << "{" << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height << "}";
}

/// Installs a simulated platform at scale 2.
class UiTest : public PlatformTest {
 protected:
  std::vector<std::string> errors() { return platform_->transcript().logTexts("error"); }
  /// Adds a view that is laid out by constraints.
  static std::shared_ptr<View> addView(View& root) {
    auto view = std::make_shared<View>();
    view->setLaidOutByConstraints(true);
    root.addSubview(view);
    return view;
  }
};

}  // namespace linewatch::ui
