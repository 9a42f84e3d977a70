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

/// A simulated platform at scale 2 is installed.
class UiTest : public PlatformTest {
 protected:
  std::vector<std::string> errors() { return platform_->transcript().logTexts("error"); }
  /// A view of the root that constraints place.
  static std::shared_ptr<View> addView(View& root) {
    auto view = std::make_shared<View>();
    view->setLaidOutByConstraints(true);
    root.addSubview(view);
    return view;
  }
};

}  // namespace linewatch::ui
