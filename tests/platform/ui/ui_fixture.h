#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ui/geometry.h"
#include "platform/ui/view.h"
#include "simulation/simulated_platform.h"

namespace linewatch::ui {

inline void PrintTo(const Rect& rect, std::ostream* out) {
  *out << "{" << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height << "}";
}

/// A simulated platform at scale 2 is installed.
class UiTest : public testing::Test {
 protected:
  UiTest() : platform_(simulation::SimulatedPlatform::make()) { installPlatform(platform_); }
  ~UiTest() override { installPlatform(nullptr); }

  std::vector<std::string> errors() { return platform_->transcript().logTexts("error"); }
  /// A view of the root that constraints place.
  static std::shared_ptr<View> addView(View& root) {
    auto view = std::make_shared<View>();
    view->setLaidOutByConstraints(true);
    root.addSubview(view);
    return view;
  }

  std::shared_ptr<simulation::SimulatedPlatform> platform_;
};

}  // namespace linewatch::ui
