#include "presentation/height_constrained_view.h"

#include <memory>

#include <gtest/gtest.h>

#include "simulation/platform_test.h"

namespace linewatch {
namespace {

using HeightConstrainedViewTest = PlatformTest;

TEST_F(HeightConstrainedViewTest, TakesNoHeightOnceItsConstraintIsActivated) {
  ui::View root({0, 0, 100, 100});
  const auto view = std::make_shared<HeightConstrainedView>();
  view->setLaidOutByConstraints(true);
  root.addSubview(view);
  view->bottomAnchor().constraintEqualTo(root.bottomAnchor())->setActive(true);
  const auto toTop = view->topAnchor().constraintEqualTo(root.topAnchor());
  toTop->setActive(true);
  root.layoutIfNeeded();
  EXPECT_FALSE(view->heightConstraint()->isActive());
  EXPECT_EQ(view->frame().height, 100);
  toTop->setActive(false);
  view->heightConstraint()->setActive(true);
  root.layoutIfNeeded();
  EXPECT_EQ(view->frame().height, 0);
  EXPECT_TRUE(view->heightConstraint()->isActive()) << "always the same constraint";
}

}  // namespace
}  // namespace linewatch
