#include "platform/ui/label.h"

#include <gtest/gtest.h>

#include "platform/ui/stack_view.h"
#include "platform/ui/table_view.h"
#include "simulation/recording_canvas.h"
#include "simulation/simulated_platform.h"

namespace linewatch::ui {
namespace {

class RowTest : public testing::Test {
 protected:
  void SetUp() override {
    platform_ = simulation::SimulatedPlatform::make();
    installPlatform(platform_);
  }
  void TearDown() override { installPlatform(nullptr); }
  std::shared_ptr<simulation::SimulatedPlatform> platform_;
};

TEST_F(RowTest, AStackOfLabelsStandsOnBaselines) {
  View root({0, 0, 200, 110});
  const auto stack = std::make_shared<StackView>(Axis::vertical);
  stack->setLaidOutByConstraints(true);
  stack->setBaselineRelativeArrangement(true);
  stack->setSpacing(21);
  root.addSubview(stack);
  const auto first = std::make_shared<Label>();
  first->setNumberOfLines(0);
  first->setText("aaaa bbbb cccc dddd eeee ffff");
  const auto second = std::make_shared<Label>();
  second->setText("x");
  stack->addArrangedSubview(first);
  stack->addArrangedSubview(second);
  LayoutConstraint::activate({stack->leadingAnchor().constraintEqualTo(root.leadingAnchor(), 16),
                              stack->trailingAnchor().constraintEqualTo(root.trailingAnchor(), -16),
                              stack->firstBaselineAnchor().constraintEqualTo(root.topAnchor(), 20)});
  root.layoutIfNeeded();
  EXPECT_EQ(stack->frame(), (Rect{16, 6, 168, 55.5}));
  EXPECT_EQ(first->frame(), (Rect{0, 0, 168, 34.5}));
  EXPECT_EQ(second->frame(), (Rect{0, 38, 168, 17.5}));
}

}  // namespace
}  // namespace linewatch::ui
